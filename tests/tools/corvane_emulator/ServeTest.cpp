// The emulator program as its users meet it: one per data folder, control actions checked, clients
// that gave up or never had the secret, a damaged database, and its log.
#include "Server.h"
#include "Store.h"

#include "connector/ConnectorLink.h"
#include "connector/CorvaneClient.h"
#include "os/ChildProcess.h"
#include "os/Os.h"
#include "os/Process.h"
#include "os/TextConversion.h"
#include "support/EmulatorProcess.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <thread>

namespace {

namespace fs = std::filesystem;
namespace json = boost::json;
using testsupport::EmulatorProcess;

constexpr int Patience = 30000; // ms; only a hung program takes this long

std::string Data(const EmulatorProcess& emulator) {
    return platform::os::WideToUtf8(emulator.DataFolder());
}

std::string ReadFile(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

platform::os::ProgramRun Emulator(std::vector<std::string> arguments) {
    return platform::os::RunProgram(
        platform::os::WideToUtf8(platform::os::PathFromUnix(VANTO_EMULATOR_PROGRAM)),
        std::move(arguments), Patience);
}

// A registered session's id.
std::string Register(Corvane::ConnectorLink& link, const EmulatorProcess& emulator) {
    return json::parse(link.Call(emulator.Endpoint(), "register", "{}"))
        .at("SessionId")
        .as_string()
        .c_str();
}

// Rows in order, on one emulator: the command line, its exit status, a piece of what it prints.
// A second emulator on its data folder is refused and leaves its endpoint as it was.
TEST(EmulatorServe, ControlArgumentsAreCheckedAndBadOnesAreUsageErrors) {
    EmulatorProcess emulator;
    const std::string secret = emulator.Endpoint().secret;
    const std::string pid = boost::json::serialize(
        json::parse(ReadFile(fs::path(emulator.DataFolder()) / "endpoint.json")).at("Pid"));
    const std::string housing = emulator.WorkspaceFolder() + "/Gearbox/housing.psm";
    const struct {
        std::vector<std::string> arguments;
        int exitCode;
        std::string says;
    } rows[] = {
        {{"serve"}, 1, "another emulator (process " + pid + ")"},
        {{"statu"}, 2, "statu"},
        {{"status", "--verbose"}, 2, "--verbose"},
        {{"fault", "FLY", "--fail", "2"}, 2, R"(no command \"FLY\")"},
        {{"fault", "GETCHILDREN", "--latency", "-1"}, 2, "0 or more"},
        {{"fault", "GETCHILDREN", "--fail", "2", "--times", "-1"}, 2, "0 or more"},
        {{"fault", "GETCHILDREN", "--latency", "86400001"}, 2, "at most 86400000"},
        {{"fault", "GETCHILDREN"}, 2, "needs LatencyMs or FailCode"},
        {{"lock", "--user", "Nobody", housing}, 2, R"(no user \"Nobody\")"},
        {{"lock", "--user", "Ada Byrne", housing + "x"}, 2, "no document"},
        {{"lock", "--user", "Ada Byrne", housing}, 1, "locked by Ben Okafor"},
        {{"fault", "GETCHILDREN", "--fail", "2", "--times", "3"}, 0, R"("Ok":true)"},
        {{"status"},
         0,
         R"("Faults":[{"Command":"GETCHILDREN","LatencyMs":0,"FailCode":2,"Times":3}])"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> arguments = row.arguments;
        arguments.insert(arguments.end(), {"--data", Data(emulator)});
        const auto run = Emulator(arguments);
        EXPECT_EQ(row.exitCode, run.exitCode) << row.arguments[0] << ": " << run.out << run.err;
        EXPECT_NE(std::string::npos, (run.out + run.err).find(row.says))
            << row.says << " in " << run.out << run.err;
    }
    EXPECT_EQ(secret, emulator.Endpoint().secret);
}

// The request waits out its fault before it runs: the client gives up first, and the lock is
// never taken.
TEST(EmulatorServe, AClientThatGaveUpWaitingHasNoLockTaken) {
    EmulatorProcess emulator;
    emulator.Control(
        R"({"Action":"fault","Command":"LOCKDESIGNREVISIONS","LatencyMs":600000,"Times":1})");
    Corvane::ConnectorLink hasty(std::chrono::seconds(1));
    const json::value shaft(emulator.WorkspaceFolder() + "/Gearbox/Shaft/shaft.par");
    const std::string lock = R"({"Command":"LOCKDESIGNREVISIONS","SessionId":")" +
                             Register(hasty, emulator) + R"(","DesignIdentifiers":[{"Value":)" +
                             json::serialize(shaft) + R"(}],"TimeToLive":-1})";
    EXPECT_THROW(hasty.Call(emulator.Endpoint(), "execute", lock),
                 Corvane::CorvaneCommunicationException);
    // Drawn, the fault leaves the list: the request has arrived.
    const std::string status = emulator.StatusWithout("LOCKDESIGNREVISIONS");
    EXPECT_NE(std::string::npos, status.find(R"("Locks":1,)")) << status; // Ben Okafor's only
}

// Far more silent connections than there are places for them: a client with the secret is still
// answered at once, and the log that GETSESSIONINFO names counts them in a few lines. It has a
// store error's SQLite message too.
TEST(EmulatorServe, SilentConnectionsNeitherCrowdOutAClientNorFillTheLog) {
    EmulatorProcess emulator;
    boost::asio::io_context io;
    std::vector<boost::asio::ip::tcp::socket> silent;
    for (int i = 0; i < 300; ++i) {
        silent.emplace_back(io).connect(
            {boost::asio::ip::address_v4::loopback(), emulator.Endpoint().port});
    }
    Corvane::ConnectorLink link(std::chrono::seconds(10));
    const std::string session = Register(link, emulator);
    const json::value info =
        json::parse(link.Call(emulator.Endpoint(), "execute",
                              R"({"Command":"GETSESSIONINFO","SessionId":")" + session + "\"}"));
    const fs::path log = info.at("CorvaneLogPath").as_string().c_str();
    EXPECT_EQ(log, info.at("CloudGatewayLogPath").as_string().c_str());
    // Pushed out before the client came, all but the last few to wait: closed on them.
    std::size_t closed = 0;
    for (auto& socket : silent) {
        char byte = 0;
        boost::system::error_code error;
        socket.non_blocking(true);
        socket.read_some(boost::asio::buffer(&byte, 1), error);
        closed += error == boost::asio::error::eof;
    }
    EXPECT_LE(300u - vanto::emulator::Server::MaxWaiting, closed);
    silent.clear();
    vanto::emulator::Database(Data(emulator) + "/corvane.db").Execute("DROP TABLE root_folders");
    link.Call(emulator.Endpoint(), "execute",
              R"({"Command":"GETCORVANEROOTFOLDERS","SessionId":")" + session + "\"}");
    emulator.Stop();

    std::istringstream lines(ReadFile(log));
    std::string events; // one line each, without its time
    for (std::string line; std::getline(lines, line);) {
        const std::regex timed(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z (.*))");
        std::smatch event;
        ASSERT_TRUE(std::regex_match(line, event, timed)) << line;
        events += event[1].str() + "\n";
    }
    EXPECT_TRUE(std::regex_match(events, std::regex("start[^\n]*\n(.*\n)+stop\n"))) << events;
    const auto count = [&events](const char* piece) {
        const std::regex pattern(piece);
        return std::distance(std::sregex_iterator(events.begin(), events.end(), pattern),
                             std::sregex_iterator());
    };
    EXPECT_LE(1, count("without the secret"));
    EXPECT_GE(3, count("without the secret"));
    EXPECT_EQ(1, count("failed: ") * count("no such table: root_folders"));
}

// Garbage over every page but the first (the header), so that SQLite opens the file.
TEST(EmulatorServe, ADamagedDatabaseIsRefusedNamedAndLeftAsItIs) {
    const fs::path data = fs::temp_directory_path() /
                          ("vanto-damaged-" + std::to_string(platform::os::CurrentProcessId()));
    fs::create_directories(data);
    const fs::path database = data / "corvane.db";
    vanto::emulator::Store(database.string())
        .ImportIfEmpty(
            {platform::os::WideToUtf8(platform::os::PathFromUnix(VANTO_EXAMPLES_DIR "/workspace")),
             "", ""},
            "Ada Byrne");
    std::string bytes = ReadFile(database);
    const std::size_t page = (std::size_t{static_cast<unsigned char>(bytes[16])} << 8) |
                             static_cast<unsigned char>(bytes[17]);
    ASSERT_LT(page, bytes.size());
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(page), bytes.end(), '\xA5');
    std::ofstream(database, std::ios::binary | std::ios::trunc) << bytes;

    const auto run = Emulator({"serve", "--data", data.string()});
    EXPECT_TRUE(run.finished);
    EXPECT_EQ(1, run.exitCode);
    EXPECT_NE(std::string::npos, run.err.find(data.string() + "/corvane.db is damaged")) << run.err;
    EXPECT_EQ(bytes, ReadFile(database));
    fs::remove_all(data);
}

} // namespace
