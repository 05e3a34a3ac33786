// The paths every file-service method shares, walked for one call: each kind of exception the
// connector can throw, and an answer with errors. The call's own data is checked by the test
// afterwards; the result before any session is CallFrameTest's.
#pragma once

#include "fileservices/FileServicesFixture.h"

#include "fileservices/ReturnCodes.h"

#include <boost/json.hpp>

#include <initializer_list>
#include <string>

namespace testsupport {

class SharedPathsTest : public FileServicesTest {
protected:
    // Each kind of exception from sending `command`: `call` gives `expected` and writes `before`
    // and then the exception line.
    template <class Result, class Call>
    void ExpectEachException(const std::string& command, Result expected, Call call,
                             const Lines& before = {}) {
        for (const auto& [kind, line] : ExceptionKinds()) {
            connector.Fail(Op::Execute, kind, "connector gone", command);
            EXPECT_EQ(expected, call());
            Lines lines = before;
            lines.push_back(line);
            EXPECT_EQ(lines, Take());
            connector.ClearFailures();
        }
    }

    // `answer` with one error entry per code: whatever else it carries must then be left alone.
    static std::string ErrorsAnswer(std::initializer_list<int> codes,
                                    const std::string& answer = "{}") {
        boost::json::object object = boost::json::parse(answer).as_object();
        boost::json::array errors;
        for (const int code : codes) {
            errors.push_back(boost::json::object{{"ErrorCode", code}});
        }
        object["Errors"] = std::move(errors);
        return boost::json::serialize(object);
    }

    // The line LogErrors writes for `code`; the messages themselves are the frame test's concern.
    static Line CodeLine(std::uint32_t code) {
        const wchar_t* message = vanto::fileservices::ReturnCodeMessage(code);
        EXPECT_NE(nullptr, message) << code;
        return {0, message != nullptr ? message : L""};
    }

    // The start every request of a versioned command shares.
    static std::string Head(const std::string& command) {
        return R"({"Command":")" + command + R"(","SessionId":"s-1","Version":1,)";
    }
};

} // namespace testsupport
