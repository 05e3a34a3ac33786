// Any text as the answer of any command: the first byte chooses the record, the rest is the text.
// Whatever the text, reading it neither crashes nor leaks, reading it again into the same record
// changes nothing, and what the record writes reads back to the same record.
#include "RecordTypes.h"
#include "Require.h"

#include "core/MemoryManager.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace {

using vanto::fuzz::Require;

template <class T> void Check(std::string_view text) {
    const std::int64_t live = Core::MemoryManager::LiveAllocations();
    {
        T record{Core::TevString(text)};
        const Core::TevString written = vanto::protocol::WriteJson(record);
        Require(!written.empty(), "a record read from any text can be written");

        vanto::protocol::FromJson(record, Core::TevString(text));
        Require(vanto::protocol::WriteJson(record) == written, "reading twice reads once");

        const T again{written};
        Require(vanto::protocol::WriteJson(again) == written, "the written text reads back");
    }
    Require(Core::MemoryManager::LiveAllocations() == live, "records free what they hold");
}

using Checker = void (*)(std::string_view text);

const std::vector<Checker>& Records() {
    static const std::vector<Checker> records = [] {
        std::vector<Checker> all;
        vanto::fuzz::ForEachReadableRecord(
            [&](auto sample) { all.push_back(&Check<typename decltype(sample)::Output>); });
        return all;
    }();
    return records;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const auto& records = Records();
    records[data[0] % records.size()](
        std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
    return 0;
}
