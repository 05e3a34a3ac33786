// The connector SDK's narrow text. It always holds UTF-8.
//
// Sixteen bytes: a text of up to 14 characters lies in them, with its closing NUL and its length
// in the last byte; a longer one is a pointer to a block of the core allocator that holds the
// length, the room and the characters with a closing NUL. Most texts in an answer are short ids,
// names and numbers, so most cost no block of their own, and neither reading nor freeing them
// touches memory beyond their record.
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
        if (text.size() > InlineRoom) {
            Adopt(Make(text.size(), text.size()));
            Fill(0, text);
        } else if (!text.empty()) {
            Place(0, text);
        }
    }
    TevString(const TevString& other) : TevString(std::string_view(other)) {}
    TevString(TevString&& other) noexcept { TakeFrom(other); }
    TevString& operator=(const TevString& other) {
        if (this != &other) {
            *this = TevString(other);
        }
        return *this;
    }
    TevString& operator=(TevString&& other) noexcept {
        if (this != &other) {
            Release();
            TakeFrom(other);
        }
        return *this;
    }
    ~TevString() {
        if (OnHeap()) {
            Free(HeapBlock());
        }
    }

    const char* c_str() const noexcept { return OnHeap() ? Chars(HeapBlock()) : bytes_; }
    const char* data() const noexcept { return c_str(); }
    std::size_t Length() const noexcept {
        return OnHeap() ? HeapBlock()->length : static_cast<unsigned char>(bytes_[Tag]);
    }
    std::size_t size() const noexcept { return Length(); }
    bool IsEmpty() const noexcept { return Length() == 0; }
    bool empty() const noexcept { return IsEmpty(); }

    std::string str() const { return std::string(c_str(), Length()); }
    operator std::string_view() const noexcept { return {c_str(), Length()}; }

    // Grows the room at least twofold when it runs out, so that appending stays linear.
    TevString& operator+=(std::string_view more) {
        const std::size_t length = Length();
        if (more.empty()) {
            return *this;
        }
        if (!OnHeap() && length + more.size() <= InlineRoom) {
            Place(length, more);
            return *this;
        }
        if (!OnHeap() || HeapBlock()->room - length < more.size()) {
            Block* grown = Make(length + more.size(), 2 * length);
            std::memcpy(Chars(grown), c_str(), length);
            Release();
            Adopt(grown);
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
    // A longer text's characters follow its block's header.
    struct Block {
        std::uint32_t length;
        std::uint32_t room; // characters it can hold, the NUL not counted
    };
    static constexpr std::size_t Overhead = sizeof(Block) + 1;
    static constexpr std::size_t Size = 16;
    // The last byte: the length of a text held inline, or HeapTag.
    static constexpr std::size_t Tag = Size - 1;
    static constexpr std::size_t InlineRoom = Tag - 1; // the NUL before the tag
    static constexpr unsigned char HeapTag = 0xFF;

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

    bool OnHeap() const noexcept { return static_cast<unsigned char>(bytes_[Tag]) == HeapTag; }
    Block* HeapBlock() const noexcept {
        Block* block;
        std::memcpy(&block, bytes_, sizeof block);
        return block;
    }
    void Adopt(Block* block) noexcept {
        std::memcpy(bytes_, &block, sizeof block);
        bytes_[Tag] = static_cast<char>(HeapTag);
    }
    // Leaves this text empty; a block it held is freed.
    void Release() noexcept {
        if (OnHeap()) {
            Free(HeapBlock());
        }
        std::memset(bytes_, 0, Size);
    }
    static void Free(Block* block) noexcept { MemoryManager::Free(block, Overhead + block->room); }
    void TakeFrom(TevString& other) noexcept {
        std::memcpy(bytes_, other.bytes_, Size);
        std::memset(other.bytes_, 0, Size);
    }
    // Writes `text` inline at `at` and ends the text there; it fits.
    void Place(std::size_t at, std::string_view text) noexcept {
        std::memcpy(bytes_ + at, text.data(), text.size());
        bytes_[at + text.size()] = '\0';
        bytes_[Tag] = static_cast<char>(at + text.size());
    }
    // Writes `text` into the block at `at` and ends the text there.
    void Fill(std::size_t at, std::string_view text) noexcept {
        Block* block = HeapBlock();
        std::memcpy(Chars(block) + at, text.data(), text.size());
        block->length = static_cast<std::uint32_t>(at + text.size());
        Chars(block)[block->length] = '\0';
    }

    alignas(sizeof(void*)) char bytes_[Size] = {};
};

} // namespace Core
