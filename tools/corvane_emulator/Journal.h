// The journal: every operation the Handler answered (execute, register, deregister, control), one
// entry each, kept in the data folder in a database of its own (each desktop keeps its own, even
// on a shared cloud), bounded to the newest entries. Sequence numbers go on across restarts and
// are never given twice.
//
// An entry is written before its answer leaves (WAL, synchronous=NORMAL: one append to the WAL
// file), so a killed emulator loses no entry of an answered request; a power cut may lose the
// newest. Listeners hear of each entry once it is written.
#pragma once

#include "Sqlite.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace vanto::emulator {

// The journal's file in the data folder.
inline constexpr const char* JournalFileName = "journal.db";
inline constexpr std::int64_t DefaultJournalSize = 10000;

// One answered operation, as the Handler saw it.
struct Exchange {
    std::string_view operation;
    std::string_view command; // the command's name; the action's for a control
    std::string_view session;
    std::string_view user;
    std::string_view request;
    std::string_view answer;
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
    // ":memory:" keeps it in memory. `size`: how many entries are kept (at least 1). `desktop`
    // names this emulator in every entry.
    Journal(const std::string& path, std::int64_t size, std::string desktop);

    // Never throws: a journal that cannot be written loses the entry, not the answer.
    void Record(const Exchange& exchange) noexcept;
    // Called with each entry once it is written.
    void Listen(std::function<void(const JournalEntry&)> listener);
    // A text blanked out of every request and answer (the transport's secret, the token).
    void Hide(std::string text) { hidden_.push_back(std::move(text)); }

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
    std::string Hidden(std::string_view text) const;

    Database db_;
    std::int64_t size_;
    std::int64_t next_ = 1;
    std::string desktop_;
    std::vector<std::string> hidden_;
    std::vector<std::function<void(const JournalEntry&)>> listeners_;
};

} // namespace vanto::emulator
