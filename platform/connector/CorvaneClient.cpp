#include "connector/CorvaneClient.h"

#include "connector/ConnectorBackend.h"
#include "connector/EmulatorConnector.h"

#include <memory>
#include <vector>

namespace Corvane {

namespace {

ConnectorBackend*& InstalledBackend() {
    static ConnectorBackend* backend = nullptr;
    return backend;
}

class Proxy final : public ICorvaneProxy {
public:
    void Reserved() override {}
    Core::TevString Execute(const Core::TevString& input) override {
        return CurrentConnectorBackend().Execute(input);
    }
    Core::TevString RegisterClient(const Core::TevString& input) override {
        return CurrentConnectorBackend().RegisterClient(input);
    }
    void DeRegisterClient(const Core::TevString& input) override {
        CurrentConnectorBackend().DeRegisterClient(input);
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
    return CurrentConnectorBackend().IsRunning();
}
bool CorvaneApplication::IsReady() {
    return CurrentConnectorBackend().IsReady();
}
void CorvaneApplication::LaunchApplication(const Core::TevString& arguments) {
    CurrentConnectorBackend().LaunchApplication(arguments);
}

} // namespace Corvane
