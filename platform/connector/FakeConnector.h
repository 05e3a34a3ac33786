// A scriptable connector for tests: installs itself as the backend while it lives, records every
// request per operation, answers commands by name and fails on demand.
#pragma once

#include "connector/ConnectorBackend.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Corvane {

class FakeConnector : public ConnectorBackend {
public:
    enum class Operation { Execute, RegisterClient, DeRegisterClient, LaunchApplication };
    // Communication: CorvaneCommunicationException; Standard: std::runtime_error;
    // Foreign: an exception that is no std::exception.
    enum class Failure { Communication, Standard, Foreign };
    struct ForeignException {
        std::string message;
    };
    using Responder = std::function<std::string(const std::string& request)>;

    FakeConnector();
    ~FakeConnector() override;
    FakeConnector(const FakeConnector&) = delete;
    FakeConnector& operator=(const FakeConnector&) = delete;

    // Answers "Command" == command with a fixed text or a function of the request. Commands
    // without an answer get {"Errors":[]}.
    void Answer(const std::string& command, std::string text);
    void Answer(const std::string& command, Responder responder);
    // Answer of RegisterClient; by default {"SessionId":"fake-session"}.
    std::string registerAnswer = R"({"SessionId":"fake-session"})";

    // Makes an operation throw; for Execute, `command` narrows it to one command ("" = any).
    // `times` < 0 fails for good.
    void Fail(Operation operation, Failure failure, std::string message, std::string command = "",
              int times = -1);
    void ClearFailures() { failures_.clear(); }

    // Every call that may throw (the four operations), in order, as "Execute <command>",
    // "RegisterClient", "DeRegisterClient" or "LaunchApplication".
    std::vector<std::string> calls;
    // Makes the call at `index` of `calls` (counted from 0) throw, once, whatever it is.
    void FailCall(std::size_t index, Failure failure, std::string message);

    // Requests as received, per operation.
    std::vector<std::string> executeRequests;
    std::vector<std::string> registerRequests;
    std::vector<std::string> deregisterRequests;
    // Execute requests of one command, in order.
    std::vector<std::string> RequestsFor(const std::string& command) const;
    // Command names of the Execute requests, in order.
    std::vector<std::string> CommandsSent() const;

    // Application state. IsReady() turns true on the poll after `readyAfterPolls` polls that
    // answered false; a negative value never gets ready.
    bool installed = true;
    bool running = true;
    int readyAfterPolls = 0;
    int readyPolls = 0;
    int launches = 0;
    std::vector<std::string> launchArguments;
    // A launch makes the connector run.
    bool launchStartsRunning = true;
    // False: managers made while it is so get no proxy.
    bool proxyAvailable = true;

    // The "Command" value of a request text; empty when it has none.
    static std::string CommandOf(const std::string& request);

    Core::TevString Execute(const Core::TevString& input) override;
    Core::TevString RegisterClient(const Core::TevString& input) override;
    void DeRegisterClient(const Core::TevString& input) override;
    bool IsInstalled() override { return installed; }
    bool IsRunning() override { return running; }
    bool IsReady() override;
    void LaunchApplication(const Core::TevString& arguments) override;
    bool ProxyAvailable() override { return proxyAvailable; }

private:
    struct ScriptedFailure {
        Operation operation;
        Failure failure;
        std::string message;
        std::string command;
        int times;
    };
    void ThrowIfScripted(Operation operation, const std::string& command);
    // Records the call in `calls` and throws when it is the one FailCall named.
    void Called(std::string call);
    [[noreturn]] static void Throw(Failure failure, const std::string& message);

    std::map<std::string, Responder> answers_;
    std::vector<ScriptedFailure> failures_;
    struct IndexedFailure {
        std::size_t index;
        Failure failure;
        std::string message;
    };
    std::vector<IndexedFailure> indexedFailures_;
    ConnectorBackend* previous_;
};

} // namespace Corvane
