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
    // A null argument does not crash.
    EXPECT_EQ(L"value (null)", FormatLogText(L"value %s", {nullptr}));
}

// Messages and the scope records, opened and closed, carry the component as their source.
TEST(LogMessage, MessagesAndScopeRecordsCarryTheComponentSource) {
    CapturingLogSink log;
    LogMessage(nullptr, vanto::SeverityWarning, GUserText(L"Corvane RootFolder is : %s "),
               GUserText(L"C:\\Corvane"));
    {
        const LogEntry scope = vanto::OpenScope(L"VANTOManager::VANTOSession::IsConnected");
        EXPECT_EQ(2u, log.records.size()); // closed only when the scope ends
    }
    std::vector<std::wstring> shown;
    for (const LogRecord& r : log.records) { // kind, log type, severity, source: message
        shown.push_back(std::to_wstring(static_cast<int>(r.kind)) + L" " +
                        std::to_wstring(r.logType) + L" " + std::to_wstring(r.severity) + L" " +
                        r.source + L": " + r.message);
    }
    EXPECT_EQ((std::vector<std::wstring>{L"2 1 1 VANTO: Corvane RootFolder is : C:\\Corvane ",
                                         L"0 0 2 VANTO: VANTOManager::VANTOSession::IsConnected",
                                         L"1 0 2 VANTO: VANTOManager::VANTOSession::IsConnected"}),
              shown);
}

} // namespace
