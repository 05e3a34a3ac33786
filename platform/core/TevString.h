// The connector SDK's narrow text. It always holds UTF-8.
//
// Sixteen bytes: a text of up to 14 characters lies in them, with its closing NUL and its length
// in the last byte; a longer one is a pointer to a block of the core allocator that holds the
// length and the characters with a closing NUL, and beside the pointer the block's room, so that
// freeing the text does not read its block, which has mostly left the cache by then. Most texts in
// an answer are short ids, names and numbers, so most cost no block of their own, and neither
// reading nor freeing them touches memory beyond their record.
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
            MakeLong(text);
        } else if (!text.empty()) {
            Pack(text);
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
            Free(HeapBlock(), HeapRoom());
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
        if (!OnHeap() || HeapRoom() - length < more.size()) {
            const std::size_t room = RoomFor(length + more.size(), 2 * length);
            Block* grown = Make(room);
            std::memcpy(Chars(grown), c_str(), length);
            Release();
            Adopt(grown, room);
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
    };
    static constexpr std::size_t Overhead = sizeof(Block) + 1;
    static constexpr std::size_t Size = 16;
    // The last byte: the length of a text held inline, or HeapTag.
    static constexpr std::size_t Tag = Size - 1;
    static constexpr std::size_t InlineRoom = Tag - 1; // the NUL before the tag
    static constexpr unsigned char HeapTag = 0xFF;

    static char* Chars(Block* block) noexcept { return reinterpret_cast<char*>(block + 1); }

    // The characters a block for a text of `length` holds when `wanted` are asked for (and
    // `length` at most 4 GiB): whatever its size class gives beyond them is used too.
    static std::size_t RoomFor(std::size_t length, std::size_t wanted) {
        constexpr std::size_t most = std::numeric_limits<std::uint32_t>::max() - Overhead;
        if (length > most) {
            throw std::length_error("TevString longer than 4 GiB");
        }
        return std::min(MemoryManager::Room(Overhead + std::max(length, wanted)) - Overhead, most);
    }
    static Block* Make(std::size_t room) {
        return static_cast<Block*>(MemoryManager::Allocate(Overhead + room));
    }

    // A long text's block, out of line: most texts are short, and their path stays small.
    __attribute__((noinline)) void MakeLong(std::string_view text) {
        const std::size_t room = RoomFor(text.size(), text.size());
        Adopt(Make(room), room);
        Fill(0, text);
    }

    bool OnHeap() const noexcept { return static_cast<unsigned char>(bytes_[Tag]) == HeapTag; }
    Block* HeapBlock() const noexcept {
        Block* block;
        std::memcpy(&block, bytes_, sizeof block);
        return block;
    }
    // The room of the block held, beside its pointer.
    std::size_t HeapRoom() const noexcept { return Load<std::uint32_t>(bytes_ + 8); }
    void Adopt(Block* block, std::size_t room) noexcept {
        Store(reinterpret_cast<std::uintptr_t>(block), room | std::uint64_t{HeapTag} << 56);
    }
    // Leaves this text empty; a block it held is freed.
    void Release() noexcept {
        if (OnHeap()) {
            Free(HeapBlock(), HeapRoom());
        }
        Store(0, 0);
    }
    static void Free(Block* block, std::size_t room) noexcept {
        MemoryManager::Free(block, Overhead + room);
    }
    void TakeFrom(TevString& other) noexcept {
        Store(Load<std::uint64_t>(other.bytes_), Load<std::uint64_t>(other.bytes_ + 8));
        other.Store(0, 0);
    }

    // The text is read, made and moved a word at a time. Written byte by byte and moved as one
    // wider load, it would make the processor wait for the bytes to reach memory before it can
    // load them (a text just read is moved into its record at once). The machines it runs on are
    // little-endian: a word's first byte is its lowest.
    template <class Word> static Word Load(const char* at) noexcept {
        Word word;
        std::memcpy(&word, at, sizeof word);
        return word;
    }
    void Store(std::uint64_t low, std::uint64_t high) noexcept {
        std::memcpy(bytes_, &low, sizeof low);
        std::memcpy(bytes_ + 8, &high, sizeof high);
    }
    // Makes this the inline text `text` (1 to InlineRoom characters), reading no byte past it:
    // the words are built from loads that overlap in the middle, what lies past the text zero.
    void Pack(std::string_view text) noexcept {
        const char* p = text.data();
        const std::size_t n = text.size();
        std::uint64_t low = 0;
        std::uint64_t high = 0;
        if (n >= 8) {
            low = Load<std::uint64_t>(p);
            high = n == 8 ? 0 : Load<std::uint64_t>(p + n - 8) >> (8 * (16 - n));
        } else if (n >= 4) {
            low = Load<std::uint32_t>(p) |
                  (std::uint64_t{Load<std::uint32_t>(p + n - 4)} << (8 * (n - 4)));
        } else {
            const auto byte = [p](std::size_t i) {
                return std::uint64_t{static_cast<unsigned char>(p[i])} << (8 * i);
            };
            low = byte(0) | byte(n / 2) | byte(n - 1);
        }
        Store(low, high | (std::uint64_t{n} << 56));
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
