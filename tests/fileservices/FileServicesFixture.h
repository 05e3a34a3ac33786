// The real file-services interface as a host reaches it, with a session id granted, the
// scriptable connector behind the proxy and the log captured.
#pragma once

#include "connector/FakeConnector.h"
#include "host/HostLog.h"
#include "session/SessionState.h"
#include "support/ComTestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace testsupport {

using Line = std::pair<int, std::wstring>;
using Lines = std::vector<Line>;
using Texts = std::vector<std::string>;

inline constexpr const wchar_t* NotValidLine = L"Corvane session is not a valid session.";

// The line a guard writes for an exception with this text.
inline Line ExceptionLine(const std::wstring& what) {
    return {0, L"Corvane session is not a valid session - exception from Execute call : " + what};
}

class FileServicesTest : public ::testing::Test {
protected:
    using Failure = Corvane::FakeConnector::Failure;
    using Op = Corvane::FakeConnector::Operation;

    FileServicesTest() {
        vanto::ResetSessionStateForTesting();
        vanto::Session().sessionId = "s-1";
    }
    ~FileServicesTest() override { vanto::ResetSessionStateForTesting(); }

    // As before any registration: no session id.
    void Unregister() { vanto::Session().sessionId.clear(); }

    // Free-text lines as (severity, text), in order; the log is cleared.
    Lines Take() {
        Lines lines;
        for (const LogRecord& record : log.records) {
            if (record.kind == LogRecord::Kind::Message) {
                lines.emplace_back(record.severity, record.message);
            }
        }
        log.Clear();
        return lines;
    }

    // The one request sent for `command`.
    std::string Sent(const std::string& command) const {
        const Texts sent = connector.RequestsFor(command);
        EXPECT_EQ(1u, sent.size()) << command;
        return sent.empty() ? std::string() : sent.front();
    }

    // Every kind of exception the proxy may throw, with the line the guard writes for it.
    static std::vector<std::pair<Failure, Line>> ExceptionKinds() {
        return {{Failure::Communication, ExceptionLine(L"connector gone")},
                {Failure::Standard, ExceptionLine(L"connector gone")},
                {Failure::Foreign, ExceptionLine(L"unknown exception")}};
    }

    Corvane::FakeConnector connector;
    CapturingLogSink log;
    ManagerHandle manager;
    IVANTOFileServices* files = manager.FileServices();
};

} // namespace testsupport
