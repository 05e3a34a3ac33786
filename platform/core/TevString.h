// The connector SDK's narrow text. It always holds UTF-8.
//
// One pointer to a block of the core allocator that holds the length, the room and the
// characters with a closing NUL; an empty text holds no block. Records have many members that
// mostly stay empty, so an empty text costs one pointer and a short one a single small block.
#pragma once

#include "core/MemoryManager.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace Core {

class TevString {
public:
    TevString() noexcept = default;
    TevString(const char* text) : TevString(std::string_view(text != nullptr ? text : "")) {}
    TevString(const std::string& text) : TevString(std::string_view(text)) {}
    TevString(const char* text, std::size_t length) : TevString(std::string_view(text, length)) {}
    TevString(std::string_view text) {
        if (!text.empty()) {
            block_ = Make(text.size(), text.size());
            Fill(0, text);
        }
    }
    TevString(const TevString& other) : TevString(std::string_view(other)) {}
    TevString(TevString&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    TevString& operator=(const TevString& other) {
        if (this != &other) {
            *this = TevString(other);
        }
        return *this;
    }
    TevString& operator=(TevString&& other) noexcept {
        if (this != &other) {
            Release(std::exchange(block_, std::exchange(other.block_, nullptr)));
        }
        return *this;
    }
    ~TevString() { Release(block_); }

    const char* c_str() const noexcept { return block_ != nullptr ? Chars(block_) : ""; }
    const char* data() const noexcept { return c_str(); }
    std::size_t Length() const noexcept { return block_ != nullptr ? block_->length : 0; }
    std::size_t size() const noexcept { return Length(); }
    bool IsEmpty() const noexcept { return block_ == nullptr || block_->length == 0; }
    bool empty() const noexcept { return IsEmpty(); }

    std::string str() const { return std::string(c_str(), Length()); }
    operator std::string_view() const noexcept { return {c_str(), Length()}; }

    // Grows the room at least twofold when it runs out, so that appending stays linear.
    TevString& operator+=(std::string_view more) {
        const std::size_t length = Length();
        if (more.empty()) {
            return *this;
        }
        if (block_ == nullptr || block_->room - length < more.size()) {
            Block* grown = Make(length + more.size(), 2 * length);
            std::memcpy(Chars(grown), c_str(), length);
            Release(std::exchange(block_, grown));
        }
        Fill(length, more);
        return *this;
    }

    // The library's equality compares byte for byte.
    friend bool operator==(const TevString& a, const TevString& b) noexcept {
        return std::string_view(a) == std::string_view(b);
    }
    friend bool operator!=(const TevString& a, const TevString& b) noexcept { return !(a == b); }
    friend bool operator==(const TevString& a, const char* b) noexcept {
        return std::string_view(a) == std::string_view(b != nullptr ? b : "");
    }
    friend bool operator!=(const TevString& a, const char* b) noexcept { return !(a == b); }
    friend bool operator<(const TevString& a, const TevString& b) noexcept {
        return std::string_view(a) < std::string_view(b);
    }

private:
    // The characters follow the block's header.
    struct Block {
        std::uint32_t length;
        std::uint32_t room; // characters it can hold, the NUL not counted
    };
    static constexpr std::size_t Overhead = sizeof(Block) + 1;

    static char* Chars(Block* block) noexcept { return reinterpret_cast<char*>(block + 1); }

    // A block with room for at least `wanted` characters (and `length` at most 4 GiB).
    static Block* Make(std::size_t length, std::size_t wanted) {
        if (length > std::numeric_limits<std::uint32_t>::max() - Overhead) {
            throw std::length_error("TevString longer than 4 GiB");
        }
        const std::size_t room =
            MemoryManager::Room(Overhead + std::max(length, wanted)) - Overhead;
        auto* block = static_cast<Block*>(MemoryManager::Allocate(Overhead + room));
        block->room = static_cast<std::uint32_t>(
            std::min<std::size_t>(room, std::numeric_limits<std::uint32_t>::max() - Overhead));
        return block;
    }
    static void Release(Block* block) noexcept {
        if (block != nullptr) {
            MemoryManager::Free(block, Overhead + block->room);
        }
    }
    // Writes `text` at `at` and ends the text there.
    void Fill(std::size_t at, std::string_view text) noexcept {
        std::memcpy(Chars(block_) + at, text.data(), text.size());
        block_->length = static_cast<std::uint32_t>(at + text.size());
        Chars(block_)[block_->length] = '\0';
    }

    Block* block_ = nullptr;
};

} // namespace Core
