// Answers of the numbering commands.
#pragma once

#include "protocol/RecordIO.h"

namespace Corvane::DataTypes {

class CorvaneGetNextIdInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneGetNextIdInfo)

    Core::TevString PropertyName;
    Core::TevString Number; // the generated number, as text
    Core::TevString Revid;  // the generated revision id

    VANTO_JSON_FIELDS(CorvaneGetNextIdInfo, (), (PropertyName, Number, Revid))
};

class CorvaneGetNextRevisionIdInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneGetNextRevisionIdInfo)

    Core::TevString RevisionFilepath; // the connector spells it with a lower-case p
    Core::TevString Revid;

    VANTO_JSON_FIELDS(CorvaneGetNextRevisionIdInfo, (), (RevisionFilepath, Revid))
};

} // namespace Corvane::DataTypes
