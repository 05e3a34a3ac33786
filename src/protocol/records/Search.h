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

    VANTO_JSON_FIELDS(CorvaneSearchTerm, (), (Property, Value, ComparisionOp))
};

class CorvaneSearchDefinition : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneSearchDefinition)

    std::int32_t Operator = 0; // how the terms combine
    Core::DynamicArray<Core::UniquePtr<CorvaneSearchTerm>> SearchTerms;

    VANTO_JSON_FIELDS(CorvaneSearchDefinition, (), (Operator, SearchTerms))
};

class CorvaneSearchCriteria : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneSearchCriteria)

    Core::UniquePtr<CorvaneSearchDefinition> Definition;

    VANTO_JSON_FIELDS(CorvaneSearchCriteria, (), (Definition))
};

class CorvaneSearchOptions : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneSearchOptions)

    std::int32_t Skip = 0;
    std::int32_t Limit = 0;

    VANTO_JSON_FIELDS(CorvaneSearchOptions, (), (Skip, Limit))
};

} // namespace Corvane::DataTypes::Search
