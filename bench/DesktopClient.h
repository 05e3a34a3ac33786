// One desktop's client of a shared cloud, over the emulator's own transport, for the cloud bench
// and the two-desktop test: registers, then takes or gives back one document at a time, chosen
// at random: it unlocks a document it holds and locks one it does not.
#pragma once

#include "connector/ConnectorLink.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/Registration.h"

#include <boost/json.hpp>

#include <chrono>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace cloudload {

using Clock = std::chrono::steady_clock;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneLockDesignRevisionsInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneLockDesignRevisionsOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneUnLockDesignRevisionsInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneUnLockDesignRevisionsOutput;

// Every document of the cloud, by its path as clients name it.
inline std::vector<std::string> Documents(const Corvane::Endpoint& endpoint) {
    Corvane::ConnectorLink link(std::chrono::seconds(30));
    const boost::json::value answer =
        boost::json::parse(link.Call(endpoint, "control", R"({"Action":"documents"})"));
    std::vector<std::string> paths;
    for (const boost::json::value& document : answer.at("Documents").as_array()) {
        paths.emplace_back(document.at("Path").as_string());
    }
    return paths;
}

class DesktopClient {
public:
    struct Step {
        std::size_t document;
        bool lock;    // else an unlock
        bool granted; // a lock answered as taken; an unlock answered without error
        Clock::time_point sent;
        Clock::time_point answered;
    };

    // The requests are written here, before any clock starts: the client's work is not the
    // cloud's.
    DesktopClient(const Corvane::Endpoint& endpoint, const std::vector<std::string>& documents,
                  unsigned stream)
        : endpoint_(endpoint), link_(std::chrono::seconds(30)), held_(documents.size()),
          random_(stream), pick_(0, documents.size() - 1) {
        Core::Registration::RegisterClientInput input;
        input.ProcessId = stream + 1;
        const Core::Registration::RegisterClientOutput output(
            link_.Call(endpoint_, "register", input.ToJson().str()));
        if (output.SessionId.empty()) {
            throw std::runtime_error("no session");
        }
        for (const std::string& path : documents) {
            CorvaneLockDesignRevisionsInput lock;
            lock.TimeToLive = -1;
            lock_.push_back(Request(lock, output.SessionId, path));
            CorvaneUnLockDesignRevisionsInput unlock;
            unlock_.push_back(Request(unlock, output.SessionId, path));
        }
    }

    Step Next() {
        const std::size_t document = pick_(random_);
        Step step{document, !held_[document], false, Clock::now(), {}};
        if (step.lock) {
            const CorvaneLockDesignRevisionsOutput out(Call(lock_[document]));
            step.granted = out.Errors.empty() && out.Status.size() == 1;
        } else {
            step.granted =
                CorvaneUnLockDesignRevisionsOutput(Call(unlock_[document])).Errors.empty();
        }
        step.answered = Clock::now();
        held_[document] = step.lock == step.granted;
        return step;
    }

    // Which documents this client was answered as holding.
    const std::vector<bool>& Held() const { return held_; }

private:
    template <class Input>
    static std::string Request(Input& input, const Core::TevString& session,
                               const std::string& path) {
        input.SessionId = session;
        input.DesignIdentifiers.emplace_back(new Corvane::DataTypes::CorvaneDesignIdentifier());
        input.DesignIdentifiers.back()->Value = path;
        return input.ToJson().str();
    }
    std::string Call(const std::string& request) {
        return link_.Call(endpoint_, "execute", request);
    }

    Corvane::Endpoint endpoint_;
    Corvane::ConnectorLink link_;
    std::vector<bool> held_;
    std::vector<std::string> lock_;
    std::vector<std::string> unlock_;
    std::mt19937 random_;
    std::uniform_int_distribution<std::size_t> pick_;
};

struct ClientRun {
    std::vector<DesktopClient::Step> steps;
    std::vector<bool> held; // at the end
};

// One client per desktop, each on a thread of its own (seeds 0, 1, ...), until `end`; throws
// when one of them failed.
inline std::vector<ClientRun> RunClients(const std::vector<Corvane::Endpoint>& desktops,
                                         const std::vector<std::string>& documents,
                                         Clock::time_point end) {
    std::vector<ClientRun> runs(desktops.size());
    std::vector<std::string> failures(desktops.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < desktops.size(); ++i) {
        threads.emplace_back([&, i] {
            try {
                DesktopClient client(desktops[i], documents, static_cast<unsigned>(i));
                while (Clock::now() < end) {
                    runs[i].steps.push_back(client.Next());
                }
                runs[i].held = client.Held();
            } catch (const std::exception& error) {
                failures[i] = error.what();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::string& failure : failures) {
        if (!failure.empty()) {
            throw std::runtime_error("a desktop's client failed: " + failure);
        }
    }
    return runs;
}

} // namespace cloudload
