// The journal: every operation the Handler answered (execute, register, deregister, control), one
// entry each, kept in the data folder in a database of its own (each desktop keeps its own, even
// on a shared cloud), bounded to the newest entries. Sequence numbers go on across restarts and
// are never given twice.
//
// Serving, it costs the command path a copy of the texts: entries are written together, one
// transaction (WAL, synchronous=NORMAL) at most every BatchMs, after their answers have gone. So
// a killed emulator can lose the entries of the last batch (answered less than BatchMs before);
// a power cut may lose more. Listeners hear of each entry once it is written.
#pragma once

#include "Sqlite.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vanto::emulator {

// The journal's file in the data folder.
inline constexpr const char* JournalFileName = "journal.db";
inline constexpr std::int64_t DefaultJournalSize = 10000;

// One answered operation, as the Handler saw it.
struct Exchange {
    std::string operation;
    std::string command; // the command's name; the action's for a control
    std::string session;
    std::string user;
    std::string request;
    std::string answer;
    std::int64_t startMs = 0; // since the epoch
    double durationMs = 0;
    std::uint32_t latencyMs = 0; // of the fault that fired, if one did
    std::int32_t failCode = 0;
    bool faulted = false;
};

struct JournalEntry {
    std::int64_t seq = 0;
    std::string json; // the whole entry, one line
};

// Which entries a reader wants: newest first, before `before` (0: from the newest).
struct JournalFilter {
    std::int64_t before = 0;
    std::int64_t limit = 200;
    std::string command;
    std::string user;
    bool errorsOnly = false;
};

class Journal {
public:
    // How long an entry may wait to be written when serving.
    static constexpr int BatchMs = 10;

    // ":memory:" keeps it in memory. `size`: how many entries are kept (at least 1). `desktop`
    // names this emulator in every entry. With `io`, entries wait up to BatchMs to be written
    // together; without, they are written at once.
    Journal(const std::string& path, std::int64_t size, std::string desktop,
            boost::asio::io_context* io = nullptr);
    // Writes what is still waiting.
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    // Never throws: a journal that cannot be written loses the entry, not the answer.
    void Record(Exchange exchange) noexcept;
    // Writes the entries waiting.
    void Flush() noexcept;
    // Called with each entry once it is written.
    void Listen(std::function<void(const JournalEntry&)> listener);
    // A text blanked out of every request and answer (the transport's secret, the token).
    void Hide(std::string text) { hidden_.push_back(std::move(text)); }

    // The readers write what waits first: they see every answered operation.
    std::vector<JournalEntry> Page(const JournalFilter& filter);
    // Oldest first, after `seq`.
    std::vector<JournalEntry> After(std::int64_t seq, std::int64_t limit);
    // Every kept entry, oldest first, one line each (JSON Lines).
    void Export(std::ostream& out);
    std::int64_t LastSeq() const { return next_ - 1; }

    // Writes the journal of the data folder `data` to `file` as JSON Lines, whether or not an
    // emulator serves it; the file appears whole or not at all. Throws std::runtime_error.
    static void ExportFolder(const std::string& data, const std::string& file);

private:
    std::string Entry(std::int64_t seq, const Exchange& exchange, std::size_t& errorCount) const;
    // The text without the hidden ones (in `holder` when any was there).
    std::string_view Hidden(std::string_view text, std::string& holder) const;
    // The entry's time, "2026-11-24T01:02:03.456Z".
    std::string Time(std::int64_t milliseconds) const;

    Database db_;
    std::optional<boost::asio::steady_timer> batch_;
    std::vector<Exchange> waiting_;
    std::int64_t size_;
    std::int64_t next_ = 1;
    std::string desktop_;
    std::vector<std::string> hidden_;
    std::vector<std::function<void(const JournalEntry&)>> listeners_;
    mutable std::pair<std::int64_t, std::string> second_{-1, ""}; // a second and its text
};

} // namespace vanto::emulator
