#include "connector/CorvaneClient.h"

#include "connector/ConnectorBackend.h"
#include "connector/EmulatorConnector.h"

#include "os/Process.h"
#include "os/TextConversion.h"

#include <boost/json.hpp>

#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

namespace Corvane {

namespace {

ConnectorBackend*& InstalledBackend() {
    static ConnectorBackend* backend = nullptr;
    return backend;
}

// The trace file, empty when calls are not traced. Read once: the file is the process's for its
// whole life.
const std::string& TraceFile() {
    static const std::string file =
        platform::os::WideToUtf8(platform::os::EnvironmentValue(L"VANTO_CORVANE_TRACE"));
    return file;
}

void AppendTrace(const boost::json::object& line) {
    if (TraceFile().empty()) {
        return;
    }
    std::ofstream out(std::filesystem::u8path(TraceFile()), std::ios::app | std::ios::binary);
    out << boost::json::serialize(line) << '\n';
}

// Runs one call of the backend and traces it, answered or thrown. Untraced, the call is all:
// a trace line holds copies of the whole request and answer, megabytes for a large call.
template <class Send>
Core::TevString Traced(const char* call, const Core::TevString& input, Send send) {
    if (TraceFile().empty()) {
        return send();
    }
    boost::json::object line{{"Call", call},
                             {"Request", boost::json::string_view(input.c_str(), input.size())}};
    try {
        Core::TevString answer = send();
        line["Answer"] = boost::json::string_view(answer.c_str(), answer.size());
        AppendTrace(line);
        return answer;
    } catch (const CorvaneCommunicationException& e) {
        line["Failure"] = e.what();
        AppendTrace(line);
        throw;
    }
}

// Runs one application query and traces it; a false answer with its reason.
bool TracedQuery(const char* call, bool (ConnectorBackend::*query)()) {
    ConnectorBackend& backend = CurrentConnectorBackend();
    const bool yes = (backend.*query)();
    boost::json::object line{{"Call", call}, {"Answer", yes ? "true" : "false"}};
    if (!yes) {
        const Core::TevString why = backend.LastFailure();
        line["Failure"] = boost::json::string_view(why.c_str(), why.size());
    }
    AppendTrace(line);
    return yes;
}

class Proxy final : public ICorvaneProxy {
public:
    void Reserved() override {}
    Core::TevString Execute(const Core::TevString& input) override {
        return Traced("execute", input, [&] { return CurrentConnectorBackend().Execute(input); });
    }
    Core::TevString RegisterClient(const Core::TevString& input) override {
        return Traced("register", input,
                      [&] { return CurrentConnectorBackend().RegisterClient(input); });
    }
    void DeRegisterClient(const Core::TevString& input) override {
        Traced("deregister", input, [&] {
            CurrentConnectorBackend().DeRegisterClient(input);
            return Core::TevString();
        });
    }
};

} // namespace

ConnectorBackend* SetConnectorBackend(ConnectorBackend* backend) {
    ConnectorBackend* previous = InstalledBackend();
    InstalledBackend() = backend;
    return previous;
}

ConnectorBackend& CurrentConnectorBackend() {
    // Made on first use, so that a process that never talks to the connector reads no setting.
    static EmulatorConnector emulator;
    ConnectorBackend* backend = InstalledBackend();
    return backend != nullptr ? *backend : emulator;
}

ICorvaneProxy* CorvaneProxyFactory::CreateCorvaneProxy() {
    if (!CurrentConnectorBackend().ProxyAvailable()) {
        return nullptr;
    }
    // The library keeps every proxy it hands out for the life of the process.
    static auto* proxies = new std::vector<std::unique_ptr<Proxy>>();
    proxies->push_back(std::make_unique<Proxy>());
    return proxies->back().get();
}

bool CorvaneApplication::IsInstalled() {
    return CurrentConnectorBackend().IsInstalled();
}
bool CorvaneApplication::IsRunning() {
    return TracedQuery("running", &ConnectorBackend::IsRunning);
}
bool CorvaneApplication::IsReady() {
    return TracedQuery("ready", &ConnectorBackend::IsReady);
}
void CorvaneApplication::LaunchApplication(const Core::TevString& arguments) {
    CurrentConnectorBackend().LaunchApplication(arguments);
}

} // namespace Corvane
