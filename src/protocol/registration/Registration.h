// Registration of the host process with the connector. These records go through the proxy's
// RegisterClient and DeRegisterClient, not Execute: no "Command", "Version" or "Errors".
#pragma once

#include "protocol/RecordIO.h"

namespace Core::Registration {

class RegisterClientInfo : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(RegisterClientInfo)

    Core::TevString FullName;
    Core::TevString Product;

    VANTO_JSON_FIELDS(RegisterClientInfo, (), (FullName, Product))
};

class RegisterClientInput : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(RegisterClientInput)

    std::int32_t ProcessId = 0;
    Core::TevString ProcessStartTime;
    Core::TevString FilePath;
    Core::UniquePtr<RegisterClientInfo> ClientInfo; // "ClientInfo" is left out when empty

    VANTO_JSON_FIELDS(RegisterClientInput, (), (ProcessId, ProcessStartTime, FilePath, ClientInfo))
};

// An answer without "SessionId" reads as an empty identifier.
class RegisterClientOutput : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(RegisterClientOutput)

    Core::TevString SessionId;

    VANTO_JSON_FIELDS(RegisterClientOutput, (), (SessionId))
};

// Deregistration is keyed by "SessionId"; callers leave the process fields at 0 and "".
class DeRegisterClientInput : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(DeRegisterClientInput)

    Core::TevString SessionId;
    std::int32_t ProcessId = 0;
    Core::TevString ProcessStartTime;

    VANTO_JSON_FIELDS(DeRegisterClientInput, (), (SessionId, ProcessId, ProcessStartTime))
};

} // namespace Core::Registration
