// The emulator killed in the middle of a series of check-outs keeps every lock it answered as
// taken and the session that took them, and its database stays consistent.
#include "Store.h"

#include "connector/ConnectorLink.h"
#include "connector/CorvaneClient.h"
#include "os/Os.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/Registration.h"
#include "support/EmulatorProcess.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <thread>

namespace {

namespace fs = std::filesystem;
using namespace Corvane::CommandIO::DataManagement::MCAD;

// Where the series stands when the emulator dies: this many locks answered, the next one taken
// but held back by a fault, and more still to come. Nothing depends on how fast either side is.
TEST(EmulatorRestart, AKillMidSeriesKeepsEveryLockAnsweredAsTaken) {
    constexpr std::size_t Answered = 40;
    const fs::path workspace =
        fs::temp_directory_path() /
        ("vanto-crash-workspace-" + std::to_string(platform::os::CurrentProcessId()));
    fs::create_directories(workspace);
    std::vector<std::string> parts;
    for (std::size_t i = 0; i < 2 * Answered; ++i) {
        parts.push_back((workspace / ("part-" + std::to_string(i) + ".par")).string());
        std::ofstream(parts.back()) << "part " << i;
    }
    testsupport::EmulatorProcess::Options options;
    options.workspace = workspace.wstring();
    testsupport::EmulatorProcess emulator(options);
    const Corvane::Endpoint endpoint = emulator.Endpoint();

    std::vector<std::string> taken;
    std::string sessionId;
    bool reached = false; // set before `halfway` is
    std::promise<void> halfway;
    std::promise<void> held;
    std::thread client([&] {
        Corvane::ConnectorLink link(std::chrono::minutes(2));
        try {
            Core::Registration::RegisterClientInput registration;
            const Core::Registration::RegisterClientOutput session(
                link.Call(endpoint, "register", registration.ToJson().str()));
            sessionId = session.SessionId.str();
            for (const std::string& part : parts) {
                if (taken.size() == Answered) {
                    reached = true;
                    halfway.set_value();
                    held.get_future().wait();
                }
                CorvaneLockDesignRevisionsInput in;
                in.SessionId = session.SessionId;
                in.TimeToLive = -1;
                in.DesignIdentifiers.emplace_back(
                    new Corvane::DataTypes::CorvaneDesignIdentifier());
                in.DesignIdentifiers.back()->Value = part;
                const CorvaneLockDesignRevisionsOutput out(
                    link.Call(endpoint, "execute", in.ToJson().str()));
                if (out.Errors.empty() && out.Status.size() == 1 &&
                    out.Status[0]->LockedBy == "Ada Byrne") {
                    taken.push_back(part);
                }
            }
        } catch (const Corvane::CorvaneCommunicationException&) {
            // The kill.
        }
        if (!reached) {
            halfway.set_value();
        }
    });
    halfway.get_future().wait();
    if (!reached) {
        client.join();
        FAIL() << "only " << taken.size() << " locks were answered as taken";
    }
    emulator.Control(R"({"Action":"fault","Command":"LOCKDESIGNREVISIONS","LatencyMs":600000})");
    held.set_value();
    // The next lock is committed before its answer waits out the fault.
    const std::string heldLock = "\"Locks\":" + std::to_string(Answered + 1);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (emulator.Control(R"({"Action":"status"})").find(heldLock) == std::string::npos &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    emulator.Kill();
    client.join();
    ASSERT_EQ(Answered, taken.size());

    emulator.Start();
    const std::string locks = emulator.Control(R"({"Action":"locks"})");
    for (const std::string& part : taken) {
        EXPECT_NE(std::string::npos, locks.find(boost::json::serialize(boost::json::value(part))))
            << part;
    }
    // The session of before the kill is still known.
    Corvane::ConnectorLink link(std::chrono::seconds(30));
    const Corvane::CommandIO::CommandOutputBase status(
        link.Call(emulator.Endpoint(), "execute",
                  R"({"Command":"GETCONNECTIONSTATUS","SessionId":")" + sessionId + "\"}"));
    EXPECT_TRUE(status.Errors.empty());
    emulator.Stop();
    vanto::emulator::Store store((fs::path(emulator.DataFolder()) / "corvane.db").string());
    EXPECT_EQ("ok", store.IntegrityCheck());
    EXPECT_EQ(static_cast<std::int64_t>(parts.size()), store.Count().documents);
    fs::remove_all(workspace);
}

} // namespace
