// The generic data-object command.
#pragma once

#include "protocol/Envelope.h"
#include "protocol/records/Pairs.h"

namespace Corvane::CommandIO::Generic {

class CorvaneSetDataObjectInput : public Core::CommandIO::VersionedCommandInputBase {
public:
    CorvaneSetDataObjectInput() : VersionedCommandInputBase("SETDATAOBJECT") {}
    VANTO_JSON_WRITER(CorvaneSetDataObjectInput)

    Core::UniquePtr<Corvane::DataTypes::CorvaneDataObjectKey> Key;
    Core::TevString Data;

    BOOST_DESCRIBE_CLASS(CorvaneSetDataObjectInput, (VersionedCommandInputBase), (Key, Data), (),
                         ())
};

class CorvaneSetDataObjectOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneSetDataObjectOutput)

    BOOST_DESCRIBE_CLASS(CorvaneSetDataObjectOutput, (CommandOutputBase), (), (), ())
};

} // namespace Corvane::CommandIO::Generic
