// Reading a large "QUERYDESIGNREVISIONS" answer and writing a large "LOCKDESIGNREVISIONS" input,
// each against Boost.JSON doing only its own part on the same data; the read also against
// Boost.JSON's parser with a handler that keeps nothing and against simdjson's DOM parser, the
// fastest reader at hand. Prints the first read's time and peak memory before the benchmarks and
// the ratios at the end.
#include "FileServicesBench.h"
#include "PeakMemory.h"
#include "RatioReport.h"
#include "protocol/commands/MCADCommands.h"

#include <benchmark/benchmark.h>
#include <boost/json.hpp>
#include <boost/json/basic_parser_impl.hpp>
#include <simdjson.h>

#include <cstdio>
#include <ctime>
#include <string>

namespace {

using Corvane::CommandIO::DataManagement::MCAD::CorvaneLockDesignRevisionsInput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneQueryDesignRevisionsOutput;
using Corvane::DataTypes::CorvaneDesignIdentifier;

constexpr int Revisions = 10000;
constexpr int RevisionsPerContext = 100;
constexpr int Identifiers = 100000;

void AppendProperty(std::string& out, int n, const char* name) {
    out += R"({"Name":")";
    out += name;
    out += R"(","PropertyType":)" + std::to_string(n % 4) + R"(,"PropertyValues":["value-)" +
           std::to_string(n) + R"("]})";
}

// 10,000 design revisions in 100 contexts; each with two properties, three datasets (each with
// its properties) and a lock. About 10 MB.
std::string MakeQueryAnswer() {
    std::string out = R"({"Errors":[],"DesignRevisionInfo":[)";
    for (int c = 0; c < Revisions / RevisionsPerContext; ++c) {
        out += c > 0 ? ",{" : "{";
        out += R"("DesignRevision":[)";
        for (int r = 0; r < RevisionsPerContext; ++r) {
            const std::string id = std::to_string(c * RevisionsPerContext + r);
            out += r > 0 ? ",{" : "{";
            out += R"("CreationDate":"2024-05-01T10:20:30Z","Id":"rev-)" + id +
                   R"(","LastModifiedDate":"2024-06-01T11:22:33Z","Name":"Bracket )" + id +
                   R"(.asm","OwnerId":"user-17","Properties":[)";
            AppendProperty(out, r, "PartNumber");
            out += ',';
            AppendProperty(out, r + 1, "Description");
            out += R"(],"Urn":"urn:corvane:rev:)" + id + R"(","Datasets":[)";
            for (int d = 0; d < 3; ++d) {
                out += d > 0 ? ",{" : "{";
                out += R"("Id":"ds-)" + id + "-" + std::to_string(d) +
                       R"(","Name":"Bracket.asm","Properties":[)";
                AppendProperty(out, d, "Material");
                out += R"(],"Urn":"urn:corvane:ds:)" + id + R"(","VersionId":"7","IsRelated":)" +
                       (d == 0 ? "false" : "true") + R"(,"FileSize":)" +
                       std::to_string(100000 + d) + R"(})";
            }
            out += R"(],"LockInfo":{"DesignIdentifier":"rev-)" + id +
                   R"(","LockedBy":"Ann","LockedAt":"2024-06-02T08:00:00Z",)"
                   R"("LockExpires":"2024-06-03T08:00:00Z","LockedByUrn":"urn:corvane:user:17",)"
                   R"("ErrorCode":0}})";
        }
        out += R"(],"ContextInformation":{"CollaborationSpaceId":"cs-1","ContainerType":"project",)"
               R"("ContainerId":"p-)" +
               std::to_string(c) + R"(","ContainerURN":"urn:corvane:project:1"}})";
    }
    out += "]}";
    return out;
}

const std::string& QueryAnswer() {
    static const std::string text = MakeQueryAnswer();
    return text;
}

std::string IdentifierValue(int n) {
    return "/work/projects/bracket/part-" + std::to_string(n) + ".prt";
}

CorvaneLockDesignRevisionsInput& LockInput() {
    static CorvaneLockDesignRevisionsInput input = [] {
        CorvaneLockDesignRevisionsInput made;
        made.SessionId = "session-0123456789";
        made.TimeToLive = 3600;
        made.DesignIdentifiers.reserve(Identifiers);
        for (int n = 0; n < Identifiers; ++n) {
            auto identifier = std::make_unique<CorvaneDesignIdentifier>();
            identifier->Value = IdentifierValue(n);
            identifier->IdentifierType = 1;
            made.DesignIdentifiers.push_back(std::move(identifier));
        }
        return made;
    }();
    return input;
}

const boost::json::value& LockTree() {
    static const boost::json::value tree = [] {
        boost::json::array identifiers;
        identifiers.reserve(Identifiers);
        for (int n = 0; n < Identifiers; ++n) {
            identifiers.push_back(
                boost::json::object{{"Value", IdentifierValue(n)}, {"IdentifierType", 1}});
        }
        return boost::json::value(boost::json::object{{"Command", "LOCKDESIGNREVISIONS"},
                                                      {"SessionId", "session-0123456789"},
                                                      {"Version", 1},
                                                      {"DesignIdentifiers", std::move(identifiers)},
                                                      {"TimeToLive", 3600}});
    }();
    return tree;
}

void ReadParseOnly(benchmark::State& state) {
    const std::string& text = QueryAnswer();
    for (auto _ : state) {
        boost::json::value tree = boost::json::parse(text);
        benchmark::DoNotOptimize(tree);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(ReadParseOnly)->Unit(benchmark::kMillisecond);

// Boost.JSON's parser alone: what any reader built on it cannot go below.
struct NullHandler {
    static constexpr std::size_t max_object_size = std::size_t(-1);
    static constexpr std::size_t max_array_size = std::size_t(-1);
    static constexpr std::size_t max_key_size = std::size_t(-1);
    static constexpr std::size_t max_string_size = std::size_t(-1);
    using error_code = boost::json::error_code;
    using string_view = boost::json::string_view;
    bool on_document_begin(error_code&) { return true; }
    bool on_document_end(error_code&) { return true; }
    bool on_object_begin(error_code&) { return true; }
    bool on_object_end(std::size_t, error_code&) { return true; }
    bool on_array_begin(error_code&) { return true; }
    bool on_array_end(std::size_t, error_code&) { return true; }
    bool on_key_part(string_view, std::size_t, error_code&) { return true; }
    bool on_key(string_view, std::size_t, error_code&) { return true; }
    bool on_string_part(string_view, std::size_t, error_code&) { return true; }
    bool on_string(string_view, std::size_t, error_code&) { return true; }
    bool on_number_part(string_view, error_code&) { return true; }
    bool on_int64(std::int64_t, string_view, error_code&) { return true; }
    bool on_uint64(std::uint64_t, string_view, error_code&) { return true; }
    bool on_double(double, string_view, error_code&) { return true; }
    bool on_bool(bool, error_code&) { return true; }
    bool on_null(error_code&) { return true; }
    bool on_comment_part(string_view, error_code&) { return true; }
    bool on_comment(string_view, error_code&) { return true; }
};

void ReadNullHandler(benchmark::State& state) {
    const std::string& text = QueryAnswer();
    for (auto _ : state) {
        boost::json::basic_parser<NullHandler> parser({});
        boost::json::error_code error;
        parser.write_some(false, text.data(), text.size(), error);
        if (error) {
            state.SkipWithError("the answer was not parsed");
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(ReadNullHandler)->Unit(benchmark::kMillisecond);

// simdjson's DOM parser as it is meant to be used: one parser kept across documents, the text in
// its padded buffer.
void ReadSimdjson(benchmark::State& state) {
    const simdjson::padded_string text(QueryAnswer());
    simdjson::dom::parser parser;
    for (auto _ : state) {
        simdjson::dom::element root;
        if (parser.parse(text).get(root) != simdjson::SUCCESS) {
            state.SkipWithError("the answer was not parsed");
        }
        benchmark::DoNotOptimize(root);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(ReadSimdjson)->Unit(benchmark::kMillisecond);

void ReadRecords(benchmark::State& state) {
    const Core::TevString text(QueryAnswer());
    std::size_t revisions = 0;
    for (auto _ : state) {
        CorvaneQueryDesignRevisionsOutput output(text);
        benchmark::DoNotOptimize(output);
        revisions = 0; // a hundred additions, nothing beside the read
        for (const auto& context : output.DesignRevisionInfo) {
            revisions += context->DesignRevision.size();
        }
    }
    if (revisions != static_cast<std::size_t>(Revisions)) {
        state.SkipWithError("the answer was not read");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}
BENCHMARK(ReadRecords)->Unit(benchmark::kMillisecond);

void WriteSerializeOnly(benchmark::State& state) {
    const boost::json::value& tree = LockTree();
    for (auto _ : state) {
        std::string text = boost::json::serialize(tree);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(WriteSerializeOnly)->Unit(benchmark::kMillisecond);

void WriteRecords(benchmark::State& state) {
    const CorvaneLockDesignRevisionsInput& input = LockInput();
    std::size_t size = 0;
    for (auto _ : state) {
        Core::TevString text = input.ToJson();
        size = text.size();
        benchmark::DoNotOptimize(text);
    }
    if (size != boost::json::serialize(LockTree()).size()) {
        state.SkipWithError("the input was not written as the tree is");
    }
}
BENCHMARK(WriteRecords)->Unit(benchmark::kMillisecond);

// The first read in the process, before any benchmark: the core allocator's pool holds only
// what static initialisation left in it, so every block of the records is new memory, as in a
// host's first call. Its peak memory is what a read needs; the benchmarks after it read into a
// pool that keeps its blocks from one call to the next, as a long-running host's does.
// Returns the read's time in milliseconds.
double ColdRead() {
    const Core::TevString text(QueryAnswer());
    bench::StartHeapCount();
    const std::clock_t start = std::clock(); // processor time, as the benchmarks take
    {
        CorvaneQueryDesignRevisionsOutput output(text);
        benchmark::DoNotOptimize(output);
    }
    const double time = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    const auto peak = bench::StopHeapCount();
    std::printf("read, first in the process (cold pool): %.2f ms, records freed included\n", time);
    if (!bench::PeakMemoryAvailable()) {
        std::printf("read peak memory: not measured on this platform\n");
        return time;
    }
    const double ratio = static_cast<double>(peak) / static_cast<double>(text.size());
    std::printf("read peak memory: %.2f x text (%lld bytes over %zu bytes of text; target <= 2) "
                "%s\n",
                ratio, static_cast<long long>(peak), text.size(),
                ratio <= 2.0 ? "ok" : "OVER TARGET");
    return time;
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    std::printf("answer text: %zu bytes; lock input: %d identifiers\n", QueryAnswer().size(),
                Identifiers);
    const double coldRead = ColdRead();
    bench::RegisterFileServiceBenchmarks();
    bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    bench::PrintRatio(reporter, "read", "ReadRecords", "ReadParseOnly", 1.0);
    bench::PrintSpeedRatio(reporter, "reader vs simdjson", "ReadRecords", "ReadSimdjson", 0.33);
    if (const auto simdjson = reporter.times.find("ReadSimdjson");
        simdjson != reporter.times.end() && coldRead > 0) {
        std::printf("first read (cold pool) vs simdjson: %.2f (%.2f ms / %.2f ms; no target: it "
                    "pays for the pool's first touch of its memory)\n",
                    simdjson->second / coldRead, coldRead, simdjson->second);
    }
    bench::PrintRatio(reporter, "write", "WriteRecords", "WriteSerializeOnly", 1.5);
    bench::PrintFileServiceRatios(reporter);
    return 0;
}
