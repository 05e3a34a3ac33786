// What stands behind the client library. The default backend is the connector emulator reached
// over its local transport (EmulatorConnector.h); tests install a FakeConnector.
#pragma once

#include "core/TevString.h"

namespace Corvane {

class ConnectorBackend {
public:
    virtual ~ConnectorBackend() = default;

    virtual Core::TevString Execute(const Core::TevString& input) = 0;
    virtual Core::TevString RegisterClient(const Core::TevString& input) = 0;
    virtual void DeRegisterClient(const Core::TevString& input) = 0;

    virtual bool IsInstalled() = 0;
    virtual bool IsRunning() = 0;
    virtual bool IsReady() = 0;
    virtual void LaunchApplication(const Core::TevString& arguments) = 0;

    // Why the last of IsRunning and IsReady answered false, as the communication exception would
    // have said it; empty when not known.
    virtual Core::TevString LastFailure() { return Core::TevString(); }

    // False makes CreateCorvaneProxy hand out no proxy (a test seam; the library always does).
    virtual bool ProxyAvailable() { return true; }
};

// Installs a backend (nullptr restores the default); returns the previous one.
ConnectorBackend* SetConnectorBackend(ConnectorBackend* backend);
ConnectorBackend& CurrentConnectorBackend();

} // namespace Corvane
