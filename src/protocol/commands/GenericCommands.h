// The generic data-object command.
#pragma once

#include "protocol/Envelope.h"
#include "protocol/records/Pairs.h"

namespace Corvane::CommandIO::Generic {

// Each input names the output its answer is read into.
class CorvaneSetDataObjectOutput;

class CorvaneSetDataObjectInput : public Core::CommandIO::VersionedCommandInputBase {
public:
    static constexpr const char* CommandName = "SETDATAOBJECT";
    CorvaneSetDataObjectInput() : VersionedCommandInputBase(CommandName) {}
    VANTO_JSON_WRITER(CorvaneSetDataObjectInput)
    using Output = CorvaneSetDataObjectOutput;

    Core::UniquePtr<Corvane::DataTypes::CorvaneDataObjectKey> Key;
    Core::TevString Data;

    VANTO_JSON_FIELDS(CorvaneSetDataObjectInput, (VersionedCommandInputBase), (Key, Data))
};

class CorvaneSetDataObjectOutput : public CommandOutputBase {
public:
    VANTO_JSON_READER(CorvaneSetDataObjectOutput)

    VANTO_JSON_FIELDS(CorvaneSetDataObjectOutput, (CommandOutputBase), ())
};

} // namespace Corvane::CommandIO::Generic
