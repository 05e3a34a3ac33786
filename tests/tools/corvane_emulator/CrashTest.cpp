// The emulator killed in the middle of a series of check-outs keeps every lock it answered as
// taken and the session that took them, and its database stays consistent.
#include "Store.h"

#include "connector/ConnectorLink.h"
#include "connector/CorvaneClient.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/Registration.h"
#include "support/EmulatorProcess.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

namespace {

namespace fs = std::filesystem;
using namespace Corvane::CommandIO::DataManagement::MCAD;

TEST(EmulatorRestart, AKillMidSeriesKeepsEveryLockAnsweredAsTaken) {
    const fs::path workspace =
        fs::temp_directory_path() / ("vanto-crash-workspace-" + std::to_string(::getpid()));
    fs::create_directories(workspace);
    std::vector<std::string> parts;
    for (int i = 0; i < 2000; ++i) {
        parts.push_back((workspace / ("part-" + std::to_string(i) + ".par")).string());
        std::ofstream(parts.back()) << "part " << i;
    }
    testsupport::EmulatorProcess::Options options;
    options.workspace = workspace.wstring();
    testsupport::EmulatorProcess emulator(options);
    const Corvane::Endpoint endpoint = emulator.Endpoint();

    std::vector<std::string> taken;
    std::string sessionId;
    std::atomic<bool> started{false};
    std::thread client([&] {
        Corvane::ConnectorLink link(std::chrono::seconds(5));
        try {
            Core::Registration::RegisterClientInput registration;
            const Core::Registration::RegisterClientOutput session(
                link.Call(endpoint, "register", registration.ToJson().str()));
            sessionId = session.SessionId.str();
            for (const std::string& part : parts) {
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
                started = true;
            }
        } catch (const Corvane::CorvaneCommunicationException&) {
            // The kill.
        }
    });
    while (!started) {
        std::this_thread::yield();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    emulator.Kill();
    client.join();
    ASSERT_FALSE(taken.empty());
    EXPECT_LT(taken.size(), parts.size()) << "the series ended before the kill";

    emulator.Start();
    const std::string locks = emulator.Control(R"({"Action":"locks"})");
    for (const std::string& part : taken) {
        EXPECT_NE(std::string::npos, locks.find("\"" + part + "\"")) << part;
    }
    // The session of before the kill is still known.
    Corvane::ConnectorLink link(std::chrono::seconds(5));
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
