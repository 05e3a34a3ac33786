// The real file-services interface as a host reaches it, with a session id granted, the
// scriptable connector behind the proxy and the log captured.
#pragma once

#include "connector/FakeConnector.h"
#include "host/HostLog.h"
#include "session/SessionState.h"
#include "support/ComTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
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

// One of each argument the slots take, for tests that walk all of them.
struct SlotArguments {
    FileCheckInList checkIns;
    FileLockStatusMap locks;
    PathMonitoredMap monitored;
    FileStatusInformation status;
    DocumentStampMap stamps;
    FileUidPathMap uids;
    FileContextList contexts;
    ContainerList containers;
    std::int32_t containerStatus = 0;
    AccessPermissionMap permissions;
    std::int32_t count = 1;
    ItemIdRevisionList ids;
    GUserText revision;
    FilePropertyList properties;
    PathList names;
    RelationMap relations;
    std::uint32_t code = 0;
    // The session slots'.
    RootFolderSet folders;
    LoggedInUserInfo user;
    SessionInfo info;
    bool timedOut = true;
};

class FileServicesTest : public ::testing::Test {
protected:
    FileServicesTest() {
        vanto::ResetSessionStateForTesting();
        vanto::Session().sessionId = "s-1";
    }
    ~FileServicesTest() override { vanto::ResetSessionStateForTesting(); }

    Lines Take() { return log.TakeMessages(); }

    Corvane::FakeConnector connector;
    CapturingLogSink log;
    ManagerHandle manager;
    IVANTOFileServices* files = manager.FileServices();
};

} // namespace testsupport
