// The connector emulator reached through the component's default backend:
//   round trip   "GETCONNECTIONSTATUS" through the client library to the emulator (database in
//                memory) and back, against a bare Boost.Asio echo of the same request and answer
//                bytes over the same transport (loopback TCP, the same framing);
//   throughput   10,000 check-outs of distinct documents, one command each, against a database
//                file: commands per second, and the last 1,000 against the first 1,000;
//   dashboard    from a command's answer to its journal event at a page subscribed to the
//                dashboard's events (median and 95th percentile of 1,000), and the round trip
//                with such a page over the same without (blocks of each in turn);
//   cloud        1, 2, 4 and 8 desktops (emulators) on one cloud database, each with one client
//                locking and unlocking random documents of the example workspace: commands per
//                second, p50, p99 and the slowest command, and how p99 and the slowest grow.
// Prints one line per figure, in the form of the other benchmarks' ratio lines. Arguments name the
// parts to run (round-trip, throughput, dashboard, cloud; none: all) and `--label TEXT` a name put
// before every line: built for Windows and run under Wine, both ends are Windows programs, and
// scripts/bench labels that run "Windows programs under Wine".
#include "DesktopClient.h"

#include "connector/ConnectorLink.h"
#include "connector/CorvaneClient.h"
#include "os/Process.h"
#include "protocol/commands/MCADCommands.h"
#include "protocol/registration/Registration.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
namespace asio = boost::asio;
using asio::ip::tcp;
using Clock = std::chrono::steady_clock;
using namespace Corvane::CommandIO::DataManagement::MCAD;

constexpr int RoundTrips = 20000;
constexpr int CheckOuts = 10000;
constexpr int Slice = 1000;
constexpr auto CloudWarmUp = std::chrono::milliseconds(500);
constexpr auto CloudLength = std::chrono::seconds(3);
constexpr int CloudRuns = 3;

double Microseconds(Clock::duration d) {
    return std::chrono::duration<double, std::micro>(d).count();
}

// Put before every line: which run this is, when there is more than one.
std::string prefix;

void PrintRatio(const char* what, double ratio, const std::string& detail, double target) {
    std::printf("%s%s ratio: %.2f (%s; target <= %.1f) %s\n", prefix.c_str(), what, ratio,
                detail.c_str(), target, ratio <= target ? "ok" : "OVER TARGET");
}

// An emulator process on a scratch folder, for the length of one measurement.
class Emulator {
public:
    Emulator(const fs::path& folder, const fs::path& workspace, bool memory,
             const std::vector<std::wstring>& more = {})
        : data_(folder) {
        std::vector<std::wstring> arguments{L"serve", L"--data", data_.wstring(), L"--workspace",
                                            workspace.wstring()};
        if (memory) {
            arguments.emplace_back(L"--memory");
        }
        arguments.insert(arguments.end(), more.begin(), more.end());
        pid_ = platform::os::LaunchDetached(platform::os::PathFromUnix(VANTO_EMULATOR_PROGRAM),
                                            arguments)
                   .pid;
        for (int waited = 0; !fs::exists(data_ / "endpoint.json"); waited += 10) {
            if (pid_ == 0 || waited > 60000) {
                throw std::runtime_error("the emulator did not start");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        platform::os::SetEnvironmentValue(L"VANTO_CORVANE_DATA", data_.wstring());
    }
    Corvane::Endpoint Endpoint() const {
        return *Corvane::ReadEndpointFile((data_ / "endpoint.json").wstring());
    }
    ~Emulator() {
        try {
            Corvane::ConnectorLink link(std::chrono::seconds(10));
            link.Call(Endpoint(), "control", R"({"Action":"stop"})");
        } catch (...) {
            platform::os::KillProcess(pid_);
        }
        platform::os::WaitForExit(pid_, 10000);
    }

private:
    fs::path data_;
    unsigned long pid_ = 0;
};

std::string Register(Corvane::ICorvaneProxy& proxy) {
    Core::Registration::RegisterClientInput input;
    input.ProcessId = 1;
    const Core::Registration::RegisterClientOutput output(proxy.RegisterClient(input.ToJson()));
    if (output.SessionId.empty()) {
        throw std::runtime_error("no session");
    }
    return output.SessionId.str();
}

// Answers every frame with the same answer bytes, as fast as Asio does it.
class EchoServer {
public:
    explicit EchoServer(std::string answer)
        : answer_(std::move(answer)), acceptor_(io_, {asio::ip::address_v4::loopback(), 0}),
          thread_([this] { Serve(); }) {}
    ~EchoServer() { thread_.join(); }
    std::uint16_t Port() const { return acceptor_.local_endpoint().port(); }

private:
    void Serve() {
        tcp::socket socket = acceptor_.accept();
        socket.set_option(tcp::no_delay(true));
        std::array<unsigned char, 4> header{};
        std::string request;
        const std::array<unsigned char, 4> answerHeader = Header(answer_.size());
        boost::system::error_code error;
        while (asio::read(socket, asio::buffer(header), error) == header.size()) {
            request.resize((std::size_t{header[0]} << 24) | (std::size_t{header[1]} << 16) |
                           (std::size_t{header[2]} << 8) | header[3]);
            asio::read(socket, asio::buffer(request));
            asio::write(socket, std::array<asio::const_buffer, 2>{asio::buffer(answerHeader),
                                                                  asio::buffer(answer_)});
        }
    }

public:
    static std::array<unsigned char, 4> Header(std::size_t size) {
        return {static_cast<unsigned char>(size >> 24), static_cast<unsigned char>(size >> 16),
                static_cast<unsigned char>(size >> 8), static_cast<unsigned char>(size)};
    }

private:
    std::string answer_;
    asio::io_context io_;
    tcp::acceptor acceptor_;
    std::thread thread_;
};

double EchoMicroseconds(const std::string& request, const std::string& answer) {
    EchoServer server(answer);
    asio::io_context io;
    tcp::socket socket(io);
    socket.connect({asio::ip::address_v4::loopback(), server.Port()});
    socket.set_option(tcp::no_delay(true));
    const auto header = EchoServer::Header(request.size());
    std::array<unsigned char, 4> answerHeader{};
    std::string received;
    std::vector<double> times;
    for (int i = 0; i < RoundTrips; ++i) {
        const auto start = Clock::now();
        asio::write(socket,
                    std::array<asio::const_buffer, 2>{asio::buffer(header), asio::buffer(request)});
        asio::read(socket, asio::buffer(answerHeader));
        received.resize((std::size_t{answerHeader[0]} << 24) |
                        (std::size_t{answerHeader[1]} << 16) | (std::size_t{answerHeader[2]} << 8) |
                        answerHeader[3]);
        asio::read(socket, asio::buffer(received));
        times.push_back(Microseconds(Clock::now() - start));
    }
    socket.close();
    std::nth_element(times.begin(), times.begin() + times.size() / 2, times.end());
    return times[times.size() / 2];
}

void RoundTrip(const fs::path& scratch) {
    fs::create_directories(scratch / "empty");
    const Emulator emulator(scratch / "round-trip", scratch / "empty", true);
    Corvane::ICorvaneProxy& proxy = *Corvane::CorvaneProxyFactory().CreateCorvaneProxy();
    const std::string request =
        R"({"Command":"GETCONNECTIONSTATUS","SessionId":")" + Register(proxy) + R"(","Version":1})";
    std::string answer;
    std::vector<double> times;
    for (int i = 0; i < RoundTrips; ++i) {
        const auto start = Clock::now();
        answer = proxy.Execute(request).str();
        times.push_back(Microseconds(Clock::now() - start));
    }
    std::nth_element(times.begin(), times.begin() + times.size() / 2, times.end());
    const double ours = times[times.size() / 2];
    // The bytes on the wire: the operation's name and a line feed before the body.
    const double echo = EchoMicroseconds("execute\n" + request, answer);
    PrintRatio("emulator round trip", ours / echo,
               "median of " + std::to_string(RoundTrips) + ": default backend " +
                   std::to_string(ours).substr(0, 6) + " us / bare Asio echo " +
                   std::to_string(echo).substr(0, 6) + " us",
               2.0);
}

void Throughput(const fs::path& scratch) {
    const fs::path workspace = scratch / "parts";
    fs::create_directories(workspace);
    std::vector<std::string> parts;
    for (int i = 0; i < CheckOuts; ++i) {
        parts.push_back((workspace / ("part-" + std::to_string(i) + ".par")).string());
        std::ofstream(parts.back()) << i;
    }
    const Emulator emulator(scratch / "throughput", workspace, false);
    Corvane::ICorvaneProxy& proxy = *Corvane::CorvaneProxyFactory().CreateCorvaneProxy();
    const Core::TevString session(Register(proxy));
    std::vector<double> times;
    const auto start = Clock::now();
    for (const std::string& part : parts) {
        CorvaneLockDesignRevisionsInput input;
        input.SessionId = session;
        input.TimeToLive = -1;
        input.DesignIdentifiers.emplace_back(new Corvane::DataTypes::CorvaneDesignIdentifier());
        input.DesignIdentifiers.back()->Value = part;
        const auto begin = Clock::now();
        const CorvaneLockDesignRevisionsOutput output(proxy.Execute(input.ToJson()));
        times.push_back(Microseconds(Clock::now() - begin));
        if (!output.Errors.empty() || output.Status.size() != 1) {
            throw std::runtime_error("a check-out failed: " + part);
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    double first = 0;
    double last = 0;
    for (int i = 0; i < Slice; ++i) {
        first += times[static_cast<std::size_t>(i)];
        last += times[times.size() - Slice + static_cast<std::size_t>(i)];
    }
    std::printf("%semulator check-outs: %.0f commands/s (%d check-outs of distinct documents, "
                "database file, %.2f s)\n",
                prefix.c_str(), CheckOuts / seconds, CheckOuts, seconds);
    PrintRatio("emulator check-out growth", last / first,
               "last 1,000 " + std::to_string(last / 1000).substr(0, 6) + " ms / first 1,000 " +
                   std::to_string(first / 1000).substr(0, 6) + " ms",
               1.5);
}

// A page subscribed to the dashboard's events from entry `after` on: the time each entry up to
// `last` arrives, read on a thread of its own.
class EventReader {
public:
    EventReader(const fs::path& data, std::int64_t after, std::int64_t last)
        : after_(after), last_(last), arrivals_(static_cast<std::size_t>(last - after)),
          socket_(io_) {
        std::ifstream file(data / "endpoint.json");
        const boost::json::object endpoint =
            boost::json::parse(std::string(std::istreambuf_iterator<char>(file), {})).as_object();
        const auto port = static_cast<std::uint16_t>(endpoint.at("DashboardPort").as_int64());
        socket_.connect({asio::ip::address_v4::loopback(), port});
        asio::write(socket_,
                    asio::buffer("GET /api/events?after=" + std::to_string(after) +
                                 " HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) +
                                 "\r\nCookie: corvane_dashboard=" +
                                 endpoint.at("DashboardToken").as_string().c_str() + "\r\n\r\n"));
        ReadUntil("retry:"); // subscribed
        thread_ = std::thread([this] { ReadUntil("id: " + std::to_string(last_) + "\n"); });
    }
    ~EventReader() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    // When each entry after `after` arrived, once all have.
    const std::vector<Clock::time_point>& Arrivals() {
        if (thread_.joinable()) {
            thread_.join();
        }
        return arrivals_;
    }

private:
    void ReadUntil(const std::string& piece) {
        std::array<char, 65536> chunk{};
        while (text_.find(piece) == std::string::npos) {
            const std::size_t size = socket_.read_some(asio::buffer(chunk));
            const auto now = Clock::now();
            text_.append(chunk.data(), size);
            for (std::size_t at = text_.find("id: ", seen_); at != std::string::npos;
                 at = text_.find("id: ", seen_)) {
                const std::int64_t seq = std::stoll(text_.substr(at + 4, 20));
                if (seq > after_ && seq <= last_) {
                    arrivals_[static_cast<std::size_t>(seq - after_ - 1)] = now;
                }
                seen_ = at + 4;
            }
        }
    }

    std::int64_t after_;
    std::int64_t last_;
    std::vector<Clock::time_point> arrivals_;
    asio::io_context io_;
    tcp::socket socket_;
    std::string text_;
    std::size_t seen_ = 0;
    std::thread thread_;
};

double Percentile(std::vector<double> values, double share) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(share * (values.size() - 1));
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

// The dashboard's two figures on one emulator with its journal in its data folder.
void Dashboard(const fs::path& scratch) {
    fs::create_directories(scratch / "empty");
    const fs::path data = scratch / "dashboard";
    const Emulator emulator(data, scratch / "empty", false);
    Corvane::ICorvaneProxy& proxy = *Corvane::CorvaneProxyFactory().CreateCorvaneProxy();
    std::int64_t seq = 0; // the journal's last entry: one per operation
    const auto timed = [&proxy, &seq](const std::string& request) {
        const auto start = Clock::now();
        proxy.Execute(request);
        ++seq;
        return Clock::now() - start;
    };
    EventReader first(data, 0, Slice + 1);
    const std::string request =
        R"({"Command":"GETCONNECTIONSTATUS","SessionId":")" + Register(proxy) + R"(","Version":1})";
    ++seq;
    std::vector<Clock::time_point> answered;
    for (int i = 0; i < Slice; ++i) {
        timed(request);
        answered.push_back(Clock::now());
    }
    const std::vector<Clock::time_point>& arrivals = first.Arrivals();
    std::vector<double> delays;
    for (std::size_t i = 0; i < answered.size(); ++i) {
        delays.push_back(Microseconds(arrivals[i + 1] - answered[i]) / 1000);
    }
    const double median = Percentile(delays, 0.5);
    const double p95 = Percentile(delays, 0.95);
    std::printf("%sdashboard event after answer: median %.2f ms (target < 20), p95 %.2f ms "
                "(target < 100) over %d commands %s\n",
                prefix.c_str(), median, p95, Slice,
                median < 20 && p95 < 100 ? "ok" : "OVER TARGET");

    constexpr int Blocks = 5;
    constexpr int PerBlock = 2000;
    std::vector<double> without;
    std::vector<double> with;
    for (int block = 0; block < Blocks; ++block) {
        for (int i = 0; i < PerBlock; ++i) {
            without.push_back(Microseconds(timed(request)));
        }
        EventReader page(data, seq, seq + PerBlock);
        for (int i = 0; i < PerBlock; ++i) {
            with.push_back(Microseconds(timed(request)));
        }
        page.Arrivals();
    }
    const double subscribed = Percentile(with, 0.5);
    const double alone = Percentile(without, 0.5);
    PrintRatio("emulator round trip with a dashboard page", subscribed / alone,
               "median of " + std::to_string(Blocks * PerBlock) + ": subscribed " +
                   std::to_string(subscribed).substr(0, 6) + " us / none " +
                   std::to_string(alone).substr(0, 6) + " us",
               1.1);
}

// The system's load average over the last minute, as the figures' context: tail latency on a
// shared machine depends on it.
std::string LoadAverage() {
    std::string oneMinute = "unknown";
    std::ifstream("/proc/loadavg") >> oneMinute;
    return oneMinute;
}

struct CloudFigures {
    double commandsPerSecond = 0;
    double p50 = 0;
    double p99 = 0;
    double slowest = 0; // milliseconds, as the others
};

// Each desktop's client runs from the start; only commands sent after the warm-up are timed.
CloudFigures CloudRun(const fs::path& folder, const fs::path& workspace, int desktops) {
    std::vector<std::unique_ptr<Emulator>> emulators;
    for (int i = 0; i < desktops; ++i) {
        const std::wstring user = L"Desktop User " + std::to_wstring(i + 1);
        emulators.push_back(std::make_unique<Emulator>(
            folder / ("desktop-" + std::to_string(i)), workspace, false,
            std::vector<std::wstring>{L"--cloud", (folder / "cloud.db").wstring(), L"--user",
                                      user}));
    }
    const std::vector<std::string> documents = cloudload::Documents(emulators[0]->Endpoint());
    std::vector<Corvane::Endpoint> endpoints;
    for (const auto& emulator : emulators) {
        endpoints.push_back(emulator->Endpoint());
    }
    const auto timed = Clock::now() + CloudWarmUp;
    std::vector<double> all;
    for (const auto& run : cloudload::RunClients(endpoints, documents, timed + CloudLength)) {
        for (const auto& step : run.steps) {
            if (step.sent >= timed) {
                all.push_back(Microseconds(step.answered - step.sent) / 1000);
            }
        }
    }
    std::sort(all.begin(), all.end());
    const auto at = [&all](double share) {
        return all[std::min(all.size() - 1, static_cast<std::size_t>(share * all.size()))];
    };
    return {all.size() / std::chrono::duration<double>(CloudLength).count(), at(0.5), at(0.99),
            all.back()};
}

// Each figure is the median of CloudRuns runs: one run's slowest command says more about what
// else the machine did at that moment than about the cloud.
CloudFigures CloudMedian(const fs::path& folder, const fs::path& workspace, int desktops,
                         std::string& slowestOfEach) {
    std::vector<CloudFigures> runs;
    for (int run = 0; run < CloudRuns; ++run) {
        runs.push_back(CloudRun(folder / std::to_string(run), workspace, desktops));
        slowestOfEach += (run == 0 ? "" : ", ") + std::to_string(runs.back().slowest).substr(0, 5);
    }
    const auto median = [&runs](double CloudFigures::*figure) {
        std::vector<double> values;
        for (const CloudFigures& run : runs) {
            values.push_back(run.*figure);
        }
        std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
        return values[values.size() / 2];
    };
    return {median(&CloudFigures::commandsPerSecond), median(&CloudFigures::p50),
            median(&CloudFigures::p99), median(&CloudFigures::slowest)};
}

void Cloud(const fs::path& scratch) {
    const fs::path workspace = scratch / "workspace";
    fs::create_directories(scratch);
    fs::copy(VANTO_EXAMPLES_DIR "/workspace", workspace, fs::copy_options::recursive);
    std::map<int, CloudFigures> figures;
    for (const int desktops : {1, 2, 4, 8}) {
        std::string slowestOfEach;
        const CloudFigures& f = figures[desktops] = CloudMedian(
            scratch / ("cloud-" + std::to_string(desktops)), workspace, desktops, slowestOfEach);
        std::printf("cloud, %d desktop(s): %.0f commands/s, p50 %.2f ms, p99 %.2f ms, slowest "
                    "%.1f ms (medians of %d runs of %lld s; each run's slowest: %s ms; load "
                    "average %s)\n",
                    desktops, f.commandsPerSecond, f.p50, f.p99, f.slowest, CloudRuns,
                    static_cast<long long>(CloudLength.count()), slowestOfEach.c_str(),
                    LoadAverage().c_str());
    }
    PrintRatio("cloud p99", figures[8].p99 / figures[1].p99,
               "8 desktops " + std::to_string(figures[8].p99).substr(0, 5) + " ms / 1 desktop " +
                   std::to_string(figures[1].p99).substr(0, 5) +
                   " ms; tail latency rises with the machine's load",
               3.0);
    std::printf("cloud slowest: %.1f ms (8 desktops, median of %d runs; target < 100) %s\n",
                figures[8].slowest, CloudRuns, figures[8].slowest < 100 ? "ok" : "OVER TARGET");
}

} // namespace

int main(int argc, char** argv) {
    std::set<std::string> parts;
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--label" && i + 1 < argc) {
            prefix = std::string("[") + argv[++i] + "] ";
        } else {
            parts.insert(argv[i]);
        }
    }
    const auto run = [&parts](const char* part) { return parts.empty() || parts.count(part) != 0; };
    const fs::path scratch =
        fs::temp_directory_path() /
        ("vanto-emulator-bench-" + std::to_string(Clock::now().time_since_epoch().count()));
    int status = 0;
    try {
        if (run("round-trip")) {
            RoundTrip(scratch);
        }
        if (run("throughput")) {
            Throughput(scratch);
        }
        if (run("dashboard")) {
            Dashboard(scratch);
        }
        if (run("cloud")) {
            Cloud(scratch);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "emulator bench: %s\n", error.what());
        status = 1;
    }
    std::error_code ignored;
    fs::remove_all(scratch, ignored);
    return status;
}
