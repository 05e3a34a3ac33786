#include "entry/VANTOManager.h"
#include "log/VANTOLog.h"

#include <gtest/gtest.h>

namespace {

using vanto::FormatLogText;

TEST(FormatLogText, NeverReadsPastItsArguments) {
    // More conversions than arguments: the extra ones stay as written.
    EXPECT_EQ(L"a=x b=%s c=%s", FormatLogText(L"a=%s b=%s c=%s", {L"x"}));
    // Conversions the component never uses are copied, never interpreted.
    EXPECT_EQ(L"%n%d%p%x%ls%S%*s", FormatLogText(L"%n%d%p%x%ls%S%*s", {L"arg"}));
    // A doubled percent sign is one; a stray one at the end of an exception text stays.
    EXPECT_EQ(L"100% done", FormatLogText(L"100%% done", {}));
    EXPECT_EQ(L"disk 100%", FormatLogText(L"disk 100%", {}));
    EXPECT_EQ(L"%", FormatLogText(L"%", {}));
    // A null argument does not crash.
    EXPECT_EQ(L"value (null)", FormatLogText(L"value %s", {nullptr}));
}

TEST(LogMessage, MessagesAndScopeRecordsCarryTheComponentSource) {
    CapturingLogSink log;
    LogMessage(nullptr, vanto::SeverityWarning, GUserText(L"Corvane RootFolder is : %s "),
               GUserText(L"C:\\Corvane"));
    {
        const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsConnected");
        EXPECT_EQ(2u, log.records.size());
    }
    ASSERT_EQ(3u, log.records.size());
    const LogRecord& message = log.records[0];
    EXPECT_EQ(LogRecord::Kind::Message, message.kind);
    EXPECT_EQ(1, message.logType);
    EXPECT_EQ(1, message.severity);
    EXPECT_EQ(L"Corvane RootFolder is : C:\\Corvane ", message.message);
    // The scope record is opened and closed again, both with log type 0 and severity 2.
    EXPECT_EQ(LogRecord::Kind::ScopeOpen, log.records[1].kind);
    EXPECT_EQ(LogRecord::Kind::ScopeClose, log.records[2].kind);
    for (std::size_t i = 1; i < 3; ++i) {
        EXPECT_EQ(0, log.records[i].logType);
        EXPECT_EQ(2, log.records[i].severity);
        EXPECT_EQ(L"VANTOManager::VANTOSession::IsConnected", log.records[i].message);
    }
    for (const LogRecord& record : log.records) {
        EXPECT_EQ(L"VANTO", record.source);
    }
}

} // namespace
