// The connector behind the client library: the connector emulator, reached over the local
// transport (ConnectorLink.h). The default backend.
//
// Where things are, first match wins:
//   program      VANTO_CORVANE_EMULATOR, then the per-user value "CorvaneEmulatorPath", then
//                corvane_emulator beside the component's module;
//   data folder  VANTO_CORVANE_DATA, then <user data>/vanto/corvane-emulator; the emulator
//                writes its endpoint file, endpoint.json, there;
//   time-out     VANTO_CORVANE_TIMEOUT_MS, else 10 s for every proxy call; the application
//                queries (running, ready) allow 2 s.
#pragma once

#include "connector/ConnectorBackend.h"
#include "connector/ConnectorLink.h"

#include <optional>
#include <string>

namespace Corvane {

class EmulatorConnector : public ConnectorBackend {
public:
    static constexpr int DefaultTimeoutMs = 10000;
    static constexpr int QueryTimeoutMs = 2000;

    EmulatorConnector();

    Core::TevString Execute(const Core::TevString& input) override;
    Core::TevString RegisterClient(const Core::TevString& input) override;
    void DeRegisterClient(const Core::TevString& input) override;
    // These three answer false on any failure and never throw.
    bool IsInstalled() override;
    bool IsRunning() override;
    bool IsReady() override;
    void LaunchApplication(const Core::TevString& arguments) override;
    Core::TevString LastFailure() override { return lastFailure_; }

    static std::wstring ProgramPath();
    static std::wstring DataFolder();
    static std::wstring EndpointFile();

private:
    std::string Call(const char* operation, const Core::TevString& body);
    // The endpoint the file names; throws the no-endpoint exception when there is none.
    static Endpoint RequireEndpoint(const std::wstring& file);
    // Runs an application query: false, with the failure kept, on any exception.
    template <class Query> bool Ask(Query query);

    ConnectorLink link_;
    ConnectorLink queries_;
    std::optional<Endpoint> endpoint_;
    std::wstring endpointFile_;
    std::string lastFailure_;
};

} // namespace Corvane
