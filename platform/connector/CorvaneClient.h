// Stand-in for the connector's client library: the proxy, its factory, the application queries
// and the communication exception. Every call goes to the installed ConnectorBackend.
//
// Like the library's own diagnostic trace, VANTO_CORVANE_TRACE names a file that each proxy call
// is appended to as one JSON line: {"Call": "execute", "Request": text, "Answer": text}, or
// "Failure" with the communication exception's message in place of "Answer".
#pragma once

#include "core/AllocatableObject.h"
#include "core/TevString.h"

#include <exception>
#include <string>

namespace Corvane {

class ICorvaneProxy {
public:
    // Slot 0 is the SDK's own and is never called by clients.
    virtual void Reserved() = 0;
    virtual Core::TevString Execute(const Core::TevString& input) = 0;
    virtual Core::TevString RegisterClient(const Core::TevString& input) = 0;
    virtual void DeRegisterClient(const Core::TevString& input) = 0;

protected:
    ~ICorvaneProxy() = default;
};

class CorvaneProxyFactory : public Core::AllocatableObject {
public:
    // The proxy lives until the process ends; clients never release it.
    ICorvaneProxy* CreateCorvaneProxy();
};

class CorvaneApplication {
public:
    bool IsInstalled();
    bool IsRunning();
    bool IsReady();
    void LaunchApplication(const Core::TevString& arguments);
};

class CorvaneCommunicationException : public std::exception {
public:
    explicit CorvaneCommunicationException(Core::TevString message)
        : message_(std::move(message)) {}
    Core::TevString GetExceptionMessage() const { return message_; }
    const char* what() const noexcept override { return message_.c_str(); }

private:
    Core::TevString message_;
};

} // namespace Corvane
