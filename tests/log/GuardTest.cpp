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
        if (ends == Ends::Standard) {
            throw std::runtime_error("100%% gone"); // the line is formatted
        }
        if (ends == Ends::Foreign) {
            throw Foreign();
        }
        return ends == Ends::Returns ? 7 : throw Known();
    };
    return vanto::Guard(-1, prefix, body, vanto::Expect<Known>([ends](const Known&) {
        if (ends == Ends::HandlerThrows) {
            throw std::runtime_error("handler");
        }
        return 5;
    }));
}

TEST(Guard, GivesTheBodysResultOrTheFailureResultWithOneLine) {
    const struct {
        Ends ends;
        const wchar_t* prefix;
        int result;
        std::vector<std::wstring> errors;
    } cases[] = {
        {Ends::Returns, L"Prefix: ", 7, {}},
        {Ends::Standard, L"Prefix: ", -1, {L"Prefix: 100% gone"}},
        {Ends::Foreign, L"Prefix: ", -1, {L"Prefix: unknown exception"}},
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
    // Without a result, as DeRegisterFromCorvane has it: walked in tests/faults.
}

} // namespace
