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

    BOOST_DESCRIBE_CLASS(RegisterClientInfo, (), (FullName, Product), (), ())
};

class RegisterClientInput : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(RegisterClientInput)

    std::int32_t ProcessId = 0;
    Core::TevString ProcessStartTime;
    Core::TevString FilePath;
    Core::UniquePtr<RegisterClientInfo> ClientInfo; // "ClientInfo" is left out when empty

    BOOST_DESCRIBE_CLASS(RegisterClientInput, (),
                         (ProcessId, ProcessStartTime, FilePath, ClientInfo), (), ())
};

// An answer without "SessionId" reads as an empty identifier.
class RegisterClientOutput : public Core::AllocatableObject {
public:
    VANTO_JSON_READER(RegisterClientOutput)

    Core::TevString SessionId;

    BOOST_DESCRIBE_CLASS(RegisterClientOutput, (), (SessionId), (), ())
};

// Deregistration is keyed by "SessionId"; callers leave the process fields at 0 and "".
class DeRegisterClientInput : public Core::AllocatableObject {
public:
    VANTO_JSON_WRITER(DeRegisterClientInput)

    Core::TevString SessionId;
    std::int32_t ProcessId = 0;
    Core::TevString ProcessStartTime;

    BOOST_DESCRIBE_CLASS(DeRegisterClientInput, (), (SessionId, ProcessId, ProcessStartTime), (),
                         ())
};

} // namespace Core::Registration
