// The emulator killed in the middle of a series of check-outs keeps every lock it answered as
// taken, none it did not, and the session that took them; its database stays consistent, and it
// starts again without the faults it had.
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
#include <thread>

namespace {

namespace fs = std::filesystem;
using namespace Corvane::CommandIO::DataManagement::MCAD;

// Where the series stands when the emulator dies: this many locks answered and the next one held
// back by a fault before it runs. Nothing depends on how fast either side is.
TEST(EmulatorRestart, AKillMidSeriesKeepsEveryLockAnsweredAsTaken) {
    constexpr std::size_t Answered = 40;
    const fs::path workspace =
        fs::temp_directory_path() /
        ("vanto-crash-workspace-" + std::to_string(platform::os::CurrentProcessId()));
    fs::create_directories(workspace);
    std::vector<std::string> parts;
    for (std::size_t i = 0; i <= Answered; ++i) {
        parts.push_back((workspace / ("part-" + std::to_string(i) + ".par")).string());
        std::ofstream(parts.back()) << "part " << i;
    }
    testsupport::EmulatorProcess::Options options;
    options.workspace = workspace.wstring();
    testsupport::EmulatorProcess emulator(options);

    Corvane::ConnectorLink link(std::chrono::minutes(2));
    Core::Registration::RegisterClientInput registration;
    const Core::Registration::RegisterClientOutput session(
        link.Call(emulator.Endpoint(), "register", registration.ToJson().str()));
    const auto lock = [&](const std::string& part) {
        CorvaneLockDesignRevisionsInput in;
        in.SessionId = session.SessionId;
        in.TimeToLive = -1;
        in.DesignIdentifiers.emplace_back(new Corvane::DataTypes::CorvaneDesignIdentifier());
        in.DesignIdentifiers.back()->Value = part;
        return CorvaneLockDesignRevisionsOutput(
            link.Call(emulator.Endpoint(), "execute", in.ToJson().str()));
    };
    for (std::size_t i = 0; i < Answered; ++i) {
        const auto out = lock(parts[i]);
        ASSERT_TRUE(out.Errors.empty() && out.Status.size() == 1 &&
                    out.Status[0]->LockedBy == "Ada Byrne")
            << parts[i];
    }
    // A fault drawn leaves the list: the held lock has arrived. Another fault is set to see that
    // a restart has none.
    emulator.Control(
        R"({"Action":"fault","Command":"LOCKDESIGNREVISIONS","LatencyMs":600000,"Times":1})");
    emulator.Control(R"({"Action":"fault","Command":"GETCHILDREN","FailCode":2})");
    std::thread held([&] { EXPECT_THROW(lock(parts[Answered]), std::exception); });
    emulator.StatusWithout("LOCKDESIGNREVISIONS");
    emulator.Kill();
    held.join();

    emulator.Start(); // over the dead one's endpoint file
    const std::string locks = emulator.Control(R"({"Action":"locks"})");
    for (std::size_t i = 0; i <= Answered; ++i) {
        const std::string quoted = boost::json::serialize(boost::json::value(parts[i]));
        EXPECT_EQ(i < Answered, locks.find(quoted) != std::string::npos) << i;
    }
    EXPECT_NE(std::string::npos, emulator.Control(R"({"Action":"status"})").find(R"("Faults":[])"));
    // The session of before the kill is still known.
    const Corvane::CommandIO::CommandOutputBase status(link.Call(
        emulator.Endpoint(), "execute",
        R"({"Command":"GETCONNECTIONSTATUS","SessionId":")" + session.SessionId.str() + "\"}"));
    EXPECT_TRUE(status.Errors.empty());
    emulator.Stop();
    vanto::emulator::Store store((fs::path(emulator.DataFolder()) / "corvane.db").string());
    EXPECT_EQ("ok", store.IntegrityCheck());
    EXPECT_EQ(static_cast<std::int64_t>(parts.size()), store.Count().documents);
    fs::remove_all(workspace);
}

} // namespace
