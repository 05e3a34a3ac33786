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

    VANTO_JSON_FIELDS(CorvaneStringToStringPair, (), (Key, Value))
};

class CorvaneStringToBoolPair : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneStringToBoolPair)

    Core::TevString Key;
    bool Value = false;

    VANTO_JSON_FIELDS(CorvaneStringToBoolPair, (), (Key, Value))
};

class CorvaneStringToStringListPair : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneStringToStringListPair)

    Core::TevString Key;
    Core::DynamicArray<Core::TevString> Values;

    VANTO_JSON_FIELDS(CorvaneStringToStringListPair, (), (Key, Values))
};

class CorvaneStringToObjectTypesPair : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneStringToObjectTypesPair)

    Core::TevString Key;
    Core::DynamicArray<std::int32_t> ObjectTypeList; // the connector's object types

    VANTO_JSON_FIELDS(CorvaneStringToObjectTypesPair, (), (Key, ObjectTypeList))
};

class CorvaneDataObjectKey : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(CorvaneDataObjectKey)

    Core::TevString PrimaryKey;
    Core::TevString SecondaryKey;

    VANTO_JSON_FIELDS(CorvaneDataObjectKey, (), (PrimaryKey, SecondaryKey))
};

} // namespace Corvane::DataTypes
