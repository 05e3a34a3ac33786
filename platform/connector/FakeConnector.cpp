#include "connector/FakeConnector.h"

#include "connector/CorvaneClient.h"

#include <boost/json.hpp>
#include <stdexcept>

namespace Corvane {

FakeConnector::FakeConnector() : previous_(SetConnectorBackend(this)) {}

FakeConnector::~FakeConnector() {
    SetConnectorBackend(previous_);
}

void FakeConnector::Answer(const std::string& command, std::string text) {
    answers_[command] = [text = std::move(text)](const std::string&) { return text; };
}

void FakeConnector::Answer(const std::string& command, Responder responder) {
    answers_[command] = std::move(responder);
}

void FakeConnector::Fail(Operation operation, Failure failure, std::string message,
                         std::string command, int times) {
    failures_.push_back({operation, failure, std::move(message), std::move(command), times});
}

std::string FakeConnector::CommandOf(const std::string& request) {
    boost::system::error_code error;
    const boost::json::value parsed = boost::json::parse(request, error);
    if (error || !parsed.is_object()) {
        return std::string();
    }
    const boost::json::value* command = parsed.as_object().if_contains("Command");
    if (command == nullptr || !command->is_string()) {
        return std::string();
    }
    return std::string(command->as_string().c_str());
}

std::vector<std::string> FakeConnector::RequestsFor(const std::string& command) const {
    std::vector<std::string> found;
    for (const std::string& request : executeRequests) {
        if (CommandOf(request) == command) {
            found.push_back(request);
        }
    }
    return found;
}

std::vector<std::string> FakeConnector::CommandsSent() const {
    std::vector<std::string> commands;
    for (const std::string& request : executeRequests) {
        commands.push_back(CommandOf(request));
    }
    return commands;
}

void FakeConnector::FailCall(std::size_t index, Failure failure, std::string message) {
    indexedFailures_.push_back({index, failure, std::move(message)});
}

void FakeConnector::Throw(Failure failure, const std::string& message) {
    switch (failure) {
    case Failure::Communication:
        throw CorvaneCommunicationException(message);
    case Failure::Standard:
        throw std::runtime_error(message);
    case Failure::Foreign:
        break;
    }
    throw ForeignException{message};
}

void FakeConnector::Called(std::string call) {
    const std::size_t index = calls.size();
    calls.push_back(std::move(call));
    for (const IndexedFailure& scripted : indexedFailures_) {
        if (scripted.index == index) {
            Throw(scripted.failure, scripted.message);
        }
    }
}

void FakeConnector::ThrowIfScripted(Operation operation, const std::string& command) {
    for (ScriptedFailure& scripted : failures_) {
        if (scripted.operation != operation || scripted.times == 0 ||
            (!scripted.command.empty() && scripted.command != command)) {
            continue;
        }
        if (scripted.times > 0) {
            --scripted.times;
        }
        Throw(scripted.failure, scripted.message);
    }
}

Core::TevString FakeConnector::Execute(const Core::TevString& input) {
    executeRequests.push_back(input.str());
    const std::string command = CommandOf(input.str());
    Called("Execute " + command);
    ThrowIfScripted(Operation::Execute, command);
    const auto answer = answers_.find(command);
    if (answer == answers_.end()) {
        return Core::TevString(R"({"Errors":[]})");
    }
    return Core::TevString(answer->second(input.str()));
}

Core::TevString FakeConnector::RegisterClient(const Core::TevString& input) {
    registerRequests.push_back(input.str());
    Called("RegisterClient");
    ThrowIfScripted(Operation::RegisterClient, std::string());
    return Core::TevString(registerAnswer);
}

void FakeConnector::DeRegisterClient(const Core::TevString& input) {
    deregisterRequests.push_back(input.str());
    Called("DeRegisterClient");
    ThrowIfScripted(Operation::DeRegisterClient, std::string());
}

bool FakeConnector::IsReady() {
    if (readyAfterPolls < 0) {
        ++readyPolls;
        return false;
    }
    if (readyPolls >= readyAfterPolls) {
        return true;
    }
    ++readyPolls;
    return false;
}

void FakeConnector::LaunchApplication(const Core::TevString& arguments) {
    ++launches;
    launchArguments.push_back(arguments.str());
    Called("LaunchApplication");
    ThrowIfScripted(Operation::LaunchApplication, std::string());
    if (launchStartsRunning) {
        running = true;
    }
}

} // namespace Corvane
