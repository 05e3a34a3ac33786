// Search criteria of the design-revision query.
#pragma once

#include "protocol/RecordIO.h"

namespace Corvane::DataTypes::Search {

class CorvaneSearchTerm : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneSearchTerm)

    Core::TevString Property;
    Core::TevString Value;
    std::int32_t ComparisionOp = 0; // the connector's key, spelled so

    BOOST_DESCRIBE_CLASS(CorvaneSearchTerm, (), (Property, Value, ComparisionOp), (), ())
};

class CorvaneSearchDefinition : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneSearchDefinition)

    std::int32_t Operator = 0; // how the terms combine
    Core::DynamicArray<Core::UniquePtr<CorvaneSearchTerm>> SearchTerms;

    BOOST_DESCRIBE_CLASS(CorvaneSearchDefinition, (), (Operator, SearchTerms), (), ())
};

class CorvaneSearchCriteria : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneSearchCriteria)

    Core::UniquePtr<CorvaneSearchDefinition> Definition;

    BOOST_DESCRIBE_CLASS(CorvaneSearchCriteria, (), (Definition), (), ())
};

class CorvaneSearchOptions : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneSearchOptions)

    std::int32_t Skip = 0;
    std::int32_t Limit = 0;

    BOOST_DESCRIBE_CLASS(CorvaneSearchOptions, (), (Skip, Limit), (), ())
};

} // namespace Corvane::DataTypes::Search
