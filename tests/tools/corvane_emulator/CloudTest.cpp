// Two desktops on one cloud, each with a client locking and unlocking random documents at the
// same time for a few seconds: no document is ever answered as taken by both users at once, and
// every lock answered as taken is held at the end, by the store's own account.
#include "DesktopClient.h"

#include "support/EmulatorProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace {

using cloudload::Clock;

std::map<std::string, std::string> Locks(const testsupport::EmulatorProcess& desktop) {
    std::map<std::string, std::string> locks;
    const auto answer = boost::json::parse(desktop.Control(R"({"Action":"locks"})"));
    for (const auto& lock : answer.at("Locks").as_array()) {
        locks[std::string(lock.at("Path").as_string())] = lock.at("LockedBy").as_string();
    }
    return locks;
}

TEST(EmulatorCloud, TwoDesktopsNeverHoldOneDocumentAtOnceAndKeepWhatTheyWereGranted) {
    testsupport::EmulatorProcess ada;
    testsupport::EmulatorProcess::Options options{{}, L"Cleo Lind", &ada, false};
    testsupport::EmulatorProcess cleo(options);
    const char* const users[] = {"Ada Byrne", "Cleo Lind"};
    const std::vector<std::string> documents = cloudload::Documents(ada.Endpoint());
    const std::map<std::string, std::string> imported = Locks(ada); // another user's, untouched
    std::map<std::string, std::string> expected = imported;

    const auto runs = cloudload::RunClients({ada.Endpoint(), cleo.Endpoint()}, documents,
                                            Clock::now() + std::chrono::seconds(3));

    // When a desktop certainly held each document: from the answer that granted it to the
    // request that gave it back.
    std::vector<std::vector<std::pair<Clock::time_point, Clock::time_point>>> holdings(
        documents.size());
    std::size_t refused = 0;
    for (std::size_t i = 0; i < 2; ++i) {
        std::vector<Clock::time_point> since(documents.size());
        for (const auto& step : runs[i].steps) {
            EXPECT_TRUE(step.lock || step.granted)
                << "an unlock refused: " << documents[step.document];
            refused += step.lock && !step.granted && imported.count(documents[step.document]) == 0;
            if (step.lock && step.granted) {
                since[step.document] = step.answered;
            } else if (!step.lock) {
                holdings[step.document].push_back({since[step.document], step.sent});
            }
        }
        for (std::size_t d = 0; d < documents.size(); ++d) {
            if (runs[i].held[d]) {
                holdings[d].push_back({since[d], Clock::time_point::max()});
                expected[documents[d]] = users[i];
            }
        }
    }
    EXPECT_GT(refused, 0u) << "the desktops never met on a document";
    for (std::size_t d = 0; d < documents.size(); ++d) {
        std::sort(holdings[d].begin(), holdings[d].end());
        for (std::size_t h = 1; h < holdings[d].size(); ++h) {
            if (holdings[d][h - 1].second > holdings[d][h].first) {
                ADD_FAILURE() << documents[d] << " granted to both desktops at once";
                break;
            }
        }
    }
    EXPECT_EQ(expected, Locks(ada));
}

} // namespace
