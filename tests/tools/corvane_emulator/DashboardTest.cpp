// The dashboard as a browser and a script meet it: who is let in, and the journal it shows,
// resumes and exports.
#include "Journal.h"

#include "os/ChildProcess.h"
#include "os/Os.h"
#include "os/Process.h"
#include "os/TextConversion.h"
#include "support/EmulatorProcess.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <thread>

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
namespace fs = std::filesystem;
namespace json = boost::json;
using testsupport::EmulatorProcess;
using vanto::emulator::Journal;

struct Page {
    std::uint16_t port = 0;
    std::string token;
    std::string Host() const { return "127.0.0.1:" + std::to_string(port); }
};

Page PageOf(const EmulatorProcess& emulator) {
    std::ifstream file(fs::path(emulator.DataFolder()) / "endpoint.json");
    const json::object endpoint =
        json::parse(std::string(std::istreambuf_iterator<char>(file), {})).as_object();
    return {static_cast<std::uint16_t>(endpoint.at("DashboardPort").as_int64()),
            endpoint.at("DashboardToken").as_string().c_str()};
}

using Headers = std::vector<std::pair<http::field, std::string>>;

http::response<http::string_body> Http(const Page& page, http::verb verb, const std::string& target,
                                       const Headers& headers, const std::string& body = {}) {
    asio::io_context io;
    asio::ip::tcp::socket socket(io);
    socket.connect({asio::ip::address_v4::loopback(), page.port});
    http::request<http::string_body> request(verb, target, 11);
    request.set(http::field::host, page.Host());
    for (const auto& [field, value] : headers) {
        request.set(field, value);
    }
    request.body() = body;
    request.prepare_payload();
    http::write(socket, request);
    boost::beast::flat_buffer buffer;
    http::response<http::string_body> response;
    http::read(socket, buffer, response);
    return response;
}

// An event stream's text until it holds `piece` (ten seconds at most).
std::string EventsUntil(
    const Page& page, const std::string& headers, const std::string& piece,
    const std::function<void()>& meanwhile = [] {}) {
    asio::io_context io;
    asio::ip::tcp::socket socket(io);
    socket.connect({asio::ip::address_v4::loopback(), page.port});
    asio::write(socket, asio::buffer("GET /api/events HTTP/1.1\r\nHost: " + page.Host() +
                                     "\r\nCookie: corvane_dashboard=" + page.token + "\r\n" +
                                     headers + "\r\n"));
    meanwhile();
    std::string text;
    for (int waited = 0; text.find(piece) == std::string::npos && waited < 10000; waited += 10) {
        std::array<char, 4096> chunk{};
        text.append(chunk.data(),
                    socket.available() > 0 ? socket.read_some(asio::buffer(chunk)) : 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return text;
}

// In order, on one emulator: each request's status and a piece of its answer (a header line or
// the body). The refused POSTs change nothing; the same POST from the page's origin does.
TEST(DashboardServe, OnlyThePagesOwnHostTokenAndOriginGetIn) {
    EmulatorProcess emulator;
    const Page page = PageOf(emulator);
    const std::string cookie = "corvane_dashboard=" + page.token;
    const std::string origin = "http://" + page.Host();
    const std::string lockBearing =
        R"({"Action":"lock","User":"Ben Okafor","Path":)" +
        json::serialize(json::value(emulator.WorkspaceFolder() + "/Gearbox/Shaft/bearing.par")) +
        "}";
    const struct {
        http::verb verb;
        std::string target;
        Headers headers;
        std::string body;
        unsigned status;
        std::string says;
    } rows[] = {
        {http::verb::get, "/api/status", {}, "", 401, "token"},
        {http::verb::get,
         "/api/status",
         {{http::field::cookie, "corvane_dashboard=x"}},
         "",
         401,
         ""},
        {http::verb::get,
         "/?token=" + page.token,
         {},
         "",
         303,
         "corvane_dashboard=" + page.token + "; HttpOnly; SameSite=Strict; Path=/"},
        {http::verb::get, "/api/status?token=" + page.token, {}, "", 200, R"("Documents":8)"},
        {http::verb::get, "/", {{http::field::cookie, cookie}}, "", 200, "default-src 'self'"},
        {http::verb::get,
         "/api/status",
         {{http::field::cookie, cookie},
          {http::field::host, "evil.example:" + std::to_string(page.port)}},
         "",
         403,
         ""},
        {http::verb::get,
         "/api/status",
         {{http::field::cookie, cookie}, {http::field::host, "127.0.0.1"}},
         "",
         403,
         ""},
        {http::verb::post,
         "/api/control",
         {{http::field::cookie, cookie}, {http::field::origin, "http://evil.example"}},
         lockBearing,
         403,
         ""},
        {http::verb::post, "/api/control", {{http::field::cookie, cookie}}, lockBearing, 403, ""},
        {http::verb::get, "/api/control", {{http::field::cookie, cookie}}, "", 405, "Allow: POST"},
        {http::verb::post,
         "/api/locks",
         {{http::field::cookie, cookie}, {http::field::origin, origin}},
         "",
         405,
         ""},
        {http::verb::post,
         "/api/control",
         {{http::field::cookie, cookie}, {http::field::origin, origin}},
         R"({"Action":"stop"})",
         403,
         ""},
        {http::verb::get, "/api/locks", {{http::field::cookie, cookie}}, "", 200, R"({"Items":[{)"},
        {http::verb::get,
         "/api/structure?document=DOC-0",
         {{http::field::cookie, cookie}},
         "",
         404,
         ""},
        {http::verb::post,
         "/api/control",
         {{http::field::cookie, cookie}, {http::field::origin, origin}},
         lockBearing,
         200,
         R"("LockedBy":"Ben Okafor")"},
    };
    for (const auto& row : rows) {
        const auto response = Http(page, row.verb, row.target, row.headers, row.body);
        std::ostringstream text;
        text << response.base() << response.body();
        EXPECT_EQ(row.status, response.result_int()) << row.target << " " << row.body;
        EXPECT_NE(std::string::npos, text.str().find(row.says)) << row.says << " in " << text.str();
        if (row.target == "/api/locks" && row.verb == http::verb::get) {
            EXPECT_EQ(std::string::npos, response.body().find("bearing.par")) << response.body();
        }
    }
    EXPECT_NE(std::string::npos, emulator.Control(R"({"Action":"status"})").find(R"("Locks":2)"));
}

// Kept newest entries, numbered on after a reopen, with names of error codes and without the
// texts it was told to hide.
TEST(DashboardJournal, KeepsTheNewestNumbersOnAndHides) {
    const fs::path file =
        fs::temp_directory_path() /
        ("vanto-journal-" + std::to_string(platform::os::CurrentProcessId()) + ".db");
    const struct {
        std::int64_t size;
        int before;
        int after;
        std::vector<std::int64_t> kept;
    } rows[] = {{3, 5, 2, {5, 6, 7}}, {10, 2, 2, {1, 2, 3, 4}}, {1, 1, 0, {1}}};
    for (const auto& row : rows) {
        for (const int count : {row.before, row.after}) {
            Journal journal(file.string(), row.size, "desk");
            journal.Hide("s3cret");
            for (int i = 0; i < count; ++i) {
                journal.Record({"execute", "LOCKDESIGNREVISIONS", "", "Ada Byrne",
                                R"({"X":"s3cret"})", R"({"Errors":[{"ErrorCode":13,"Ids":[]}]})"});
            }
        }
        auto journal = std::make_unique<Journal>(file.string(), row.size, "desk");
        std::vector<std::int64_t> kept;
        for (const auto& entry : journal->After(0, 100)) {
            kept.push_back(entry.seq);
            EXPECT_EQ(std::string::npos, entry.json.find("s3cret")) << entry.json;
            EXPECT_NE(std::string::npos,
                      entry.json.find(R"("Errors":[{"Code":13,"Name":"ObjectLocked"}])"));
        }
        EXPECT_EQ(row.kept, kept) << row.size;
        journal.reset(); // Windows removes no open file
        fs::remove(file);
    }
}

// Every operation as an entry, numbered on across a restart: a page that resumes from its last
// entry gets what it missed and then the live ones, and the export holds everything once.
TEST(DashboardJournal, RecordsEveryOperationAndResumesAcrossARestart) {
    EmulatorProcess emulator;
    Corvane::ConnectorLink link(std::chrono::seconds(10));
    const std::string session = json::parse(link.Call(emulator.Endpoint(), "register", "{}"))
                                    .at("SessionId")
                                    .as_string()
                                    .c_str();
    const std::string execute = R"({"SessionId":")" + session + R"(","Command":)";
    link.Call(
        emulator.Endpoint(), "execute",
        execute + R"("LOCKDESIGNREVISIONS","DesignIdentifiers":[{"Value":)" +
            json::serialize(json::value(emulator.WorkspaceFolder() + "/Gearbox/housing.psm")) +
            "}]}");
    link.Call(emulator.Endpoint(), "execute", execute + R"("FLY"})");
    link.Call(emulator.Endpoint(), "deregister", R"({"SessionId":")" + session + "\"}");
    emulator.Control(R"({"Action":"signout"})");
    const Page first = PageOf(emulator);
    const auto page = Http(first, http::verb::get, "/api/journal",
                           {{http::field::cookie, "corvane_dashboard=" + first.token}});
    const struct {
        const char* operation;
        const char* command;
        const char* errors;
    } rows[] = {{"control", "signout", "[]"},
                {"deregister", "", "[]"},
                {"execute", "FLY", R"([{"Code":4,"Name":"CommandNotSupported"}])"},
                {"execute", "LOCKDESIGNREVISIONS", R"([{"Code":13,"Name":"ObjectLocked"}])"},
                {"register", "", "[]"}};
    const json::array items = json::parse(page.body()).at("Items").as_array();
    ASSERT_EQ(std::size(rows), items.size()) << page.body();
    for (std::size_t i = 0; i < items.size(); ++i) {
        const json::object& entry = items[i].as_object();
        EXPECT_EQ(static_cast<std::int64_t>(items.size() - i), entry.at("Seq").as_int64());
        EXPECT_EQ(rows[i].operation, entry.at("Operation").as_string());
        EXPECT_EQ(rows[i].command, entry.at("Command").as_string());
        EXPECT_EQ(rows[i].errors, json::serialize(entry.at("Errors"))) << json::serialize(entry);
        EXPECT_EQ(rows[i].operation == std::string("control") ? "" : session,
                  entry.at("Session").as_string());
    }

    const std::string firstSecret = emulator.Endpoint().secret;
    emulator.Stop();
    emulator.Start();
    const Page second = PageOf(emulator);
    const std::string resumed = EventsUntil(second, "Last-Event-ID: 3\r\n", "id: 7\n",
                                            [&] { emulator.Control(R"({"Action":"signin"})"); });
    EXPECT_LT(resumed.find("id: 4\n"), resumed.find("id: 5\n")) << resumed;
    EXPECT_LT(resumed.find("id: 5\n"), resumed.find("id: 6\n")) << resumed;
    EXPECT_EQ(std::string::npos, resumed.find("id: 3\n")) << resumed;
    EXPECT_NE(std::string::npos, resumed.find("event: changed")) << resumed;

    const fs::path exported = fs::path(emulator.DataFolder()) / "journal.jsonl";
    const auto run = platform::os::RunProgram(
        platform::os::WideToUtf8(platform::os::PathFromUnix(VANTO_EMULATOR_PROGRAM)),
        {"journal", "--data", platform::os::WideToUtf8(emulator.DataFolder()), "--export",
         exported.string()},
        30000);
    ASSERT_EQ(0, run.exitCode) << run.err;
    std::ifstream lines(exported);
    std::string all;
    std::int64_t seq = 0;
    for (std::string line; std::getline(lines, line); all += line) {
        EXPECT_EQ(++seq, json::parse(line).at("Seq").as_int64()) << line;
    }
    EXPECT_EQ(7, seq);
    for (const std::string& hidden :
         {firstSecret, emulator.Endpoint().secret, first.token, second.token}) {
        EXPECT_EQ(std::string::npos, all.find(hidden));
    }
    EXPECT_NE(std::string::npos, all.find(R"("Command":"LOCKDESIGNREVISIONS")"));
}

} // namespace
