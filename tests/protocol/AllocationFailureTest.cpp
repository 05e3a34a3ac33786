// Every command read and written while the core allocator fails, at each of its allocations in
// turn: nothing crashes, nothing leaks, and a reading cut short keeps exactly the members that
// were complete before the failure.
#include "core/MemoryManager.h"
#include "protocol/RecordIO.h"
#include "support/SampleRecords.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using Core::MemoryManager;

// The document with only its first `keys` top-level members, in their order.
std::string FirstMembers(const std::string& text, std::size_t keys) {
    const boost::json::value whole = boost::json::parse(text);
    boost::json::object part;
    for (const auto& member : whole.as_object()) {
        if (part.size() == keys) {
            break;
        }
        part.emplace(member.key(), member.value());
    }
    return boost::json::serialize(part);
}

// Reads `text` into a fresh record with the nth allocation failing, once for every n up to one
// past the last allocation. What the record holds must be what reading only the members before
// the one being read at the failure gives; the allocator's live count must come back.
template <class T>
void ReadWithEveryAllocationFailing(const std::string& name, const std::string& text) {
    SCOPED_TRACE(name);
    // partial[k]: the record after reading the first k members; cost[k]: its allocations.
    const std::size_t members = boost::json::parse(text).as_object().size();
    std::vector<std::string> partial;
    std::vector<std::int64_t> cost;
    for (std::size_t k = 0; k <= members; ++k) {
        const Core::TevString first(FirstMembers(text, k)); // texts are core memory too
        const std::int64_t before = MemoryManager::AllocationCount();
        T record;
        vanto::protocol::FromJson(record, first);
        cost.push_back(MemoryManager::AllocationCount() - before);
        partial.push_back(vanto::protocol::WriteJson(record).str());
    }
    ASSERT_EQ(text, partial.back()) << "the sample is the writer's own text";

    const Core::TevString whole(text);
    for (std::int64_t n = 1; n <= cost.back() + 1; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n));
        const std::int64_t live = MemoryManager::LiveAllocations();
        {
            T record;
            MemoryManager::FailAllocationForTesting(n);
            vanto::protocol::FromJson(record, whole);
            MemoryManager::FailAllocationForTesting(0);
            // The failure fell inside member k when cost[k] < n <= cost[k + 1]: members before k
            // are kept. Past the last allocation nothing fails and the whole record is read.
            std::size_t k = 0;
            while (k < members && cost[k + 1] < n) {
                ++k;
            }
            EXPECT_EQ(partial[k], vanto::protocol::WriteJson(record).str());
        }
        EXPECT_EQ(live, MemoryManager::LiveAllocations());
    }
}

// Writes the record read from `text` with the nth allocation failing, for every n up to one past
// the allocations the writer makes: the whole text when nothing failed, an empty one otherwise.
template <class T>
void WriteWithEveryAllocationFailing(const std::string& name, const std::string& text) {
    SCOPED_TRACE(name);
    T record;
    vanto::protocol::FromJson(record, Core::TevString(text));
    ASSERT_EQ(text, record.ToJson().str()) << "the sample is the writer's own text";

    const std::int64_t before = MemoryManager::AllocationCount();
    (void)record.ToJson();
    const std::int64_t allocations = MemoryManager::AllocationCount() - before;
    for (std::int64_t n = 1; n <= allocations + 1; ++n) {
        const std::int64_t live = MemoryManager::LiveAllocations();
        const std::int64_t start = MemoryManager::AllocationCount();
        MemoryManager::FailAllocationForTesting(n);
        const std::string written = record.ToJson().str();
        MemoryManager::FailAllocationForTesting(0);
        const bool failed = MemoryManager::AllocationCount() - start >= n;
        EXPECT_EQ(failed ? std::string() : text, written) << "allocation " << n;
        EXPECT_EQ(live, MemoryManager::LiveAllocations());
    }
}

TEST(AllocationFailure, EveryCommandReadAndWrittenWithEachAllocationFailingInTurn) {
    int commands = 0;
    testsupport::ForEachSample([&](auto sample) {
        using Sample = decltype(sample);
        WriteWithEveryAllocationFailing<typename Sample::Input>(sample.name, sample.input);
        if constexpr (!std::is_void_v<typename Sample::Output>) {
            ReadWithEveryAllocationFailing<typename Sample::Output>(sample.name, sample.output);
        }
        ++commands;
    });
    EXPECT_EQ(23, commands);
}

} // namespace
