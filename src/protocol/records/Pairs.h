// Small pair records. A list of pairs stands for a map: one element per entry, in the order
// received.
#pragma once

#include "protocol/RecordIO.h"

namespace Corvane::DataTypes {

class CorvaneStringToStringPair : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneStringToStringPair)

    Core::TevString Key;
    Core::TevString Value;

    BOOST_DESCRIBE_CLASS(CorvaneStringToStringPair, (), (Key, Value), (), ())
};

class CorvaneStringToBoolPair : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneStringToBoolPair)

    Core::TevString Key;
    bool Value = false;

    BOOST_DESCRIBE_CLASS(CorvaneStringToBoolPair, (), (Key, Value), (), ())
};

class CorvaneStringToStringListPair : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneStringToStringListPair)

    Core::TevString Key;
    Core::DynamicArray<Core::TevString> Values;

    BOOST_DESCRIBE_CLASS(CorvaneStringToStringListPair, (), (Key, Values), (), ())
};

class CorvaneStringToObjectTypesPair : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneStringToObjectTypesPair)

    Core::TevString Key;
    Core::DynamicArray<std::int32_t> ObjectTypeList; // the connector's object types

    BOOST_DESCRIBE_CLASS(CorvaneStringToObjectTypesPair, (), (Key, ObjectTypeList), (), ())
};

class CorvaneDataObjectKey : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneDataObjectKey)

    Core::TevString PrimaryKey;
    Core::TevString SecondaryKey;

    BOOST_DESCRIBE_CLASS(CorvaneDataObjectKey, (), (PrimaryKey, SecondaryKey), (), ())
};

} // namespace Corvane::DataTypes
