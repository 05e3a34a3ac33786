// The barrier every interface method runs in: what it gives back and writes for each way its body
// can end, and that nothing gets past it, not even a failure to write the line.
#include "log/Guard.h"

#include "host/HostLog.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Known {};
struct Foreign {};

// A sink that cannot write, as when memory has run out.
class FailingSink : public CapturingLogSink {
public:
    void Write(const LogRecord&) override { throw std::bad_alloc(); }
};

enum class Ends { Returns, Standard, Foreign, ExpectedType, HandlerThrows };

int Guarded(Ends ends, const wchar_t* prefix) {
    const auto body = [ends]() -> int {
        switch (ends) {
        case Ends::Returns:
            return 7;
        case Ends::Standard:
            throw std::runtime_error("100%% gone"); // the line is formatted
        case Ends::Foreign:
            throw Foreign();
        case Ends::ExpectedType:
        case Ends::HandlerThrows:
            throw Known();
        }
        return 0;
    };
    return vanto::Guard(-1, prefix, body, vanto::Expect<Known>([ends](const Known&) {
        if (ends == Ends::HandlerThrows) {
            throw std::runtime_error("handler");
        }
        return 5;
    }));
}

TEST(Guard, GivesTheBodysResultOrTheFailureResultWithOneLine) {
    const std::wstring line = L"Prefix: ";
    const struct {
        Ends ends;
        const wchar_t* prefix;
        int result;
        std::vector<std::wstring> errors;
    } cases[] = {
        {Ends::Returns, L"Prefix: ", 7, {}},
        {Ends::Standard, L"Prefix: ", -1, {line + L"100% gone"}},
        {Ends::Foreign, L"Prefix: ", -1, {line + L"unknown exception"}},
        {Ends::Standard, vanto::WithoutLine, -1, {}},
        {Ends::Foreign, vanto::WithoutLine, -1, {}},
        // The expected type is the handler's alone, and a handler that fails gives the failure.
        {Ends::ExpectedType, L"Prefix: ", 5, {}},
        {Ends::HandlerThrows, L"Prefix: ", -1, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.ends));
        CapturingLogSink log;
        EXPECT_EQ(c.result, Guarded(c.ends, c.prefix));
        EXPECT_EQ(c.errors, log.Messages(0));
        EXPECT_EQ(c.errors.size(), log.records.size());
        FailingSink failing;
        EXPECT_EQ(c.result, Guarded(c.ends, c.prefix)) << "the line could not be written";
    }
    // Without a result: the body runs once, and what it throws stays inside.
    CapturingLogSink log;
    int runs = 0;
    vanto::Guard(L"Void: ", [&runs] {
        ++runs;
        throw Foreign();
    });
    EXPECT_EQ(1, runs);
    EXPECT_EQ(std::vector<std::wstring>{L"Void: unknown exception"}, log.Messages(0));
}

} // namespace
