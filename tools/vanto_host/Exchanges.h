// What the connector was asked and answered while the component worked, read back from the client
// library's trace (VANTO_CORVANE_TRACE, connector/CorvaneClient.h): the interfaces do not carry
// the connector's error codes, the ids they name, nor why a call got no answer.
#pragma once

#include <boost/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace vanto::host {

// One error of an answer: its return code, the ids it names and, for a lock, who holds it.
struct ConnectorError {
    std::int32_t code = 0;
    std::vector<std::string> ids;
    std::string holder;
};

class Exchanges {
public:
    // One line of the trace.
    void Add(const boost::json::object& line);

    // Why this process has no working connection to the connector, empty when it has one: the
    // transport's failure, offline, signed out, or no session granted. `sessionNeeded`: the
    // command needs a registration, which then must have happened.
    std::string NotConnectedCause(bool sessionNeeded) const;
    // A call was sent and got no answer (time-out, lost connection): what it changed is unknown.
    bool AnswerMissing() const noexcept { return answerMissing_; }
    // Whether anything was sent or tried.
    bool Empty() const noexcept { return calls_ == 0; }
    // The session id the connector granted this process, empty when none.
    const std::string& SessionId() const noexcept { return sessionId_; }

    // Every error of every answer, each once, in order.
    const std::vector<ConnectorError>& Errors() const noexcept { return errors_; }
    // The last answer to `command` (its "Command" name), or null.
    const boost::json::object* AnswerTo(std::string_view command) const;

private:
    void AddErrors(const boost::json::object& answer);

    std::size_t calls_ = 0;
    bool registerTried_ = false;
    bool registered_ = false;
    bool answerMissing_ = false;
    std::string failure_;
    std::string sessionId_;
    std::vector<ConnectorError> errors_;
    std::unordered_set<std::string> seen_;
    std::vector<std::pair<std::string, boost::json::object>> answers_;
};

// The trace file of this process: named in the environment before the component is loaded, read
// as it grows, removed at the end.
class ConnectorTrace {
public:
    ConnectorTrace();
    ~ConnectorTrace();
    ConnectorTrace(const ConnectorTrace&) = delete;
    ConnectorTrace& operator=(const ConnectorTrace&) = delete;

    // Adds the lines written since the last call.
    void ReadInto(Exchanges& exchanges);

private:
    std::string path_;
    std::streamoff read_ = 0;
};

// A member of an answer's record: its text (empty for anything else), or its list (empty for
// anything else).
std::string TextOf(const boost::json::object& record, std::string_view key);
const boost::json::array& ArrayOf(const boost::json::object& record, std::string_view key);
const boost::json::array& ArrayOf(const boost::json::value& record, std::string_view key);

// "13 ObjectLocked", or the number alone for a code without a name.
std::string ReturnCodeText(std::int32_t code);

} // namespace vanto::host
