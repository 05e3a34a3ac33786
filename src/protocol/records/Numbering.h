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

    BOOST_DESCRIBE_CLASS(CorvaneGetNextIdInfo, (), (PropertyName, Number, Revid), (), ())
};

class CorvaneGetNextRevisionIdInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(CorvaneGetNextRevisionIdInfo)

    Core::TevString RevisionFilepath; // the connector spells it with a lower-case p
    Core::TevString Revid;

    BOOST_DESCRIBE_CLASS(CorvaneGetNextRevisionIdInfo, (), (RevisionFilepath, Revid), (), ())
};

} // namespace Corvane::DataTypes
