// The core allocator's pool and the texts kept in it: blocks never overlap, whichever thread
// frees them, and the counts stay true across threads.
#include "core/MemoryManager.h"
#include "core/TevString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using Core::MemoryManager;

struct Block {
    std::size_t size;
    unsigned char* bytes;
};

// Blocks of every size around the pool's classes and its limit, each filled over all its room.
std::vector<Block> FilledBlocks() {
    std::vector<Block> blocks;
    for (std::size_t size : {0, 1, 7, 8, 9, 24, 100, 511, 512, 513, 4096, 70000}) {
        for (int copy = 0; copy < 3; ++copy) {
            auto* bytes = static_cast<unsigned char*>(MemoryManager::Allocate(size));
            std::memset(bytes, static_cast<int>(blocks.size()), MemoryManager::Room(size));
            blocks.push_back({size, bytes});
        }
    }
    return blocks;
}

TEST(MemoryPool, BlocksMadeOnOneThreadAndFreedOnAnotherKeepTheirBytesAndTheCounts) {
    const std::int64_t live = MemoryManager::LiveAllocations();
    const std::int64_t calls = MemoryManager::AllocationCount();
    std::vector<Block> blocks;
    for (int round = 0; round < 2; ++round) {
        // The second thread takes over the pool of the first, which has ended.
        std::thread([&] { blocks = FilledBlocks(); }).join();
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            const std::size_t room = MemoryManager::Room(blocks[i].size);
            EXPECT_EQ(std::vector<unsigned char>(room, static_cast<unsigned char>(i)),
                      std::vector<unsigned char>(blocks[i].bytes, blocks[i].bytes + room))
                << "block " << i << " of " << blocks[i].size << " bytes";
        }
        EXPECT_EQ(live + static_cast<std::int64_t>(blocks.size()),
                  MemoryManager::LiveAllocations());
        for (const Block& block : blocks) {
            MemoryManager::Free(block.bytes, block.size);
        }
    }
    EXPECT_EQ(live, MemoryManager::LiveAllocations());
    EXPECT_EQ(calls + 2 * static_cast<std::int64_t>(blocks.size()),
              MemoryManager::AllocationCount());
}

// Each row: a text, then what is appended to it in turn.
TEST(MemoryPool, TextsGrowAcrossBlockSizes) {
    const std::int64_t live = MemoryManager::LiveAllocations();
    const std::vector<std::vector<std::string>> rows = {
        {"", "", "a"},
        {"1234567", std::string(500, 'x'), std::string(600, 'y')},
        {std::string(5000, 'z'), "", "tail"},
    };
    for (const auto& row : rows) {
        Core::TevString text(row[0]);
        std::string expected = row[0];
        for (std::size_t i = 1; i < row.size(); ++i) {
            text += row[i];
            expected += row[i];
        }
        EXPECT_EQ(expected, std::string(text.c_str())) << "the text ends where its length does";
        EXPECT_EQ(expected.size(), text.size());
    }
    EXPECT_EQ(live, MemoryManager::LiveAllocations());
}

// Texts of every length across the limit of what a text holds in itself, each with distinct
// bytes: made, copied, moved and appended to, each keeps its characters and its closing NUL.
TEST(MemoryPool, TextsOfEveryLengthAroundTheInlineLimitKeepTheirBytes) {
    const std::int64_t live = MemoryManager::LiveAllocations();
    const std::string source = "abcdefghijklmnopqrstuvwxyz";
    for (std::size_t length = 0; length <= 20; ++length) {
        const std::string expected = source.substr(0, length);
        const Core::TevString made(expected);
        Core::TevString copied(made);
        const Core::TevString moved(std::move(copied));
        Core::TevString grown(expected.substr(0, length / 2));
        grown += expected.substr(length / 2);
        const Core::TevString& appended = grown;
        for (const Core::TevString* text : {&made, &moved, &appended}) {
            EXPECT_EQ(expected, std::string(text->c_str())) << "length " << length;
            EXPECT_EQ(length, text->size());
        }
        EXPECT_TRUE(copied.empty()) << "a text moved from is left empty";
    }
    EXPECT_EQ(live, MemoryManager::LiveAllocations());
}

} // namespace
