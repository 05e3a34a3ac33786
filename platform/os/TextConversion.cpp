#include "os/TextConversion.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

#ifdef _WIN32
#include <climits>
#include <windows.h>
#endif

namespace platform::os {

#ifdef _WIN32

void AppendUtf8ToWide(std::wstring& wide, std::string_view utf8) {
    // The converter takes an int length; longer text cannot be converted at all.
    if (utf8.empty() || utf8.size() > static_cast<std::size_t>(INT_MAX)) {
        return;
    }
    const int inLength = static_cast<int>(utf8.size());
    const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), inLength, nullptr, 0);
    if (length < 1) {
        return;
    }
    const std::size_t start = wide.size();
    wide.resize(start + static_cast<std::size_t>(length));
    const int written =
        MultiByteToWideChar(CP_UTF8, 0, utf8.data(), inLength, wide.data() + start, length);
    wide.resize(start + static_cast<std::size_t>(written < 1 ? 0 : written));
}

std::string WideToUtf8(std::wstring_view wide) {
    if (wide.empty() || wide.size() > static_cast<std::size_t>(INT_MAX)) {
        return {};
    }
    const int inLength = static_cast<int>(wide.size());
    const int length =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), inLength, nullptr, 0, nullptr, nullptr);
    if (length < 1) {
        return {};
    }
    std::string utf8(static_cast<std::size_t>(length), '\0');
    const int written = WideCharToMultiByte(CP_UTF8, 0, wide.data(), inLength, utf8.data(), length,
                                            nullptr, nullptr);
    if (written < 1) {
        return {};
    }
    utf8.resize(static_cast<std::size_t>(written));
    return utf8;
}

#else

// Our own converter, written to give the same text as the Windows converter (as Wine implements
// it), including how many U+FFFD a broken sequence turns into, so that both builds agree.

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;

// Most of a request or an answer is ASCII, and it goes across eight bytes at a time.
constexpr std::size_t WordSize = sizeof(std::uint64_t);

// Whether the eight bytes from `pos` on are there and all ASCII.
bool AsciiWord(std::string_view utf8, std::size_t pos) {
    if (utf8.size() - pos < WordSize) {
        return false;
    }
    std::uint64_t word;
    std::memcpy(&word, utf8.data() + pos, WordSize);
    return (word & 0x8080808080808080U) == 0;
}

bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

bool IsSurrogate(char32_t value) {
    return value >= 0xD800 && value <= 0xDFFF;
}

// Continuation bytes a lead byte announces; 0 for bytes that cannot start a sequence: continuation
// bytes, C0/C1 (always overlong) and F5..FF (always beyond U+10FFFF).
std::size_t TrailCount(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF) {
        return 1;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        return 2;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        return 3;
    }
    return 0;
}

// The second byte's range that keeps the sequence shortest-form, off the surrogates and at most
// U+10FFFF.
bool SecondByteAllowed(unsigned char lead, unsigned char second) {
    switch (lead) {
    case 0xE0:
        return second >= 0xA0;
    case 0xED:
        return second <= 0x9F;
    case 0xF0:
        return second >= 0x90;
    case 0xF4:
        return second <= 0x8F;
    default:
        return true;
    }
}

// Decodes the sequence whose lead byte (not ASCII) is at pos and moves pos past what it uses up.
// Like the system converter: a sequence that the end of the text cuts short swallows the rest of
// the text; a continuation byte in the wrong range for the second position is used up with the
// lead; any other bad byte is left to start the next sequence.
char32_t DecodeSequence(std::string_view utf8, std::size_t& pos) {
    const auto lead = static_cast<unsigned char>(utf8[pos]);
    const std::size_t trail = TrailCount(lead);
    ++pos;
    if (trail == 0) {
        return kReplacement;
    }
    if (utf8.size() - pos < trail) {
        pos = utf8.size();
        return kReplacement;
    }
    const auto second = static_cast<unsigned char>(utf8[pos]);
    if (!IsContinuation(second)) {
        return kReplacement;
    }
    ++pos;
    if (!SecondByteAllowed(lead, second)) {
        return kReplacement;
    }
    char32_t value = lead & (0x3F >> trail);
    value = (value << 6) | (second & 0x3F);
    for (std::size_t i = 1; i < trail; ++i) {
        const auto next = static_cast<unsigned char>(utf8[pos]);
        if (!IsContinuation(next)) {
            return kReplacement;
        }
        ++pos;
        value = (value << 6) | (next & 0x3F);
    }
    return value;
}

void AppendUtf8(std::string& utf8, char32_t value) {
    if (value < 0x80) {
        utf8.push_back(static_cast<char>(value));
    } else if (value < 0x800) {
        utf8.push_back(static_cast<char>(0xC0 | (value >> 6)));
        utf8.push_back(static_cast<char>(0x80 | (value & 0x3F)));
    } else if (value < 0x10000) {
        utf8.push_back(static_cast<char>(0xE0 | (value >> 12)));
        utf8.push_back(static_cast<char>(0x80 | ((value >> 6) & 0x3F)));
        utf8.push_back(static_cast<char>(0x80 | (value & 0x3F)));
    } else {
        utf8.push_back(static_cast<char>(0xF0 | (value >> 18)));
        utf8.push_back(static_cast<char>(0x80 | ((value >> 12) & 0x3F)));
        utf8.push_back(static_cast<char>(0x80 | ((value >> 6) & 0x3F)));
        utf8.push_back(static_cast<char>(0x80 | (value & 0x3F)));
    }
}

// Reads the code point at pos and moves pos past it; anything that is not a scalar value (an
// unpaired surrogate, or beyond U+10FFFF where wchar_t holds whole code points) reads as U+FFFD.
char32_t ReadWide(std::wstring_view wide, std::size_t& pos) {
    // Through the unsigned type of the same width, so that a negative wchar_t reads as too large.
    using Unit = std::conditional_t<kWideIsUtf16, char16_t, char32_t>;
    const char32_t unit = static_cast<Unit>(wide[pos++]);
    if (kWideIsUtf16 && unit >= 0xD800 && unit <= 0xDBFF && pos < wide.size()) {
        const char32_t low = static_cast<Unit>(wide[pos]);
        if (low >= 0xDC00 && low <= 0xDFFF) {
            ++pos;
            return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
        }
    }
    if (IsSurrogate(unit) || unit > 0x10FFFF) {
        return kReplacement;
    }
    return unit;
}

} // namespace

void AppendUtf8ToWide(std::wstring& wide, std::string_view utf8) {
    // Texts here run to tens of megabytes: they are converted a block at a time into a small
    // buffer and appended from there, so that the text is written once, never cleared first.
    // Every byte gives at most one code unit (a four-byte sequence gives two UTF-16 units).
    constexpr std::size_t Block = 4096;
    wchar_t block[Block];
    wide.reserve(wide.size() + utf8.size());
    std::size_t pos = 0;
    while (pos < utf8.size()) {
        wchar_t* out = block;
        // Stops short of the end by one sequence's worth of units.
        while (pos < utf8.size() && out < block + Block - 2) {
            if (AsciiWord(utf8, pos) && out + WordSize <= block + Block) {
                for (std::size_t k = 0; k < WordSize; ++k) {
                    out[k] = static_cast<wchar_t>(utf8[pos + k]);
                }
                out += WordSize;
                pos += WordSize;
                continue;
            }
            const auto byte = static_cast<unsigned char>(utf8[pos]);
            if (byte < 0x80) {
                *out++ = static_cast<wchar_t>(byte);
                ++pos;
                continue;
            }
            char32_t value = DecodeSequence(utf8, pos);
            if (kWideIsUtf16 && value > 0xFFFF) {
                value -= 0x10000;
                *out++ = static_cast<wchar_t>(0xD800 + (value >> 10));
                *out++ = static_cast<wchar_t>(0xDC00 + (value & 0x3FF));
            } else {
                *out++ = static_cast<wchar_t>(value);
            }
        }
        wide.append(block, static_cast<std::size_t>(out - block));
    }
}

std::string WideToUtf8(std::wstring_view wide) {
    std::string utf8;
    utf8.reserve(wide.size());
    std::size_t pos = 0;
    while (pos < wide.size()) {
        // Plain ASCII goes straight across; it is most of every path and name.
        const auto unit = static_cast<std::make_unsigned_t<wchar_t>>(wide[pos]);
        if (unit < 0x80) {
            utf8.push_back(static_cast<char>(unit));
            ++pos;
        } else {
            AppendUtf8(utf8, ReadWide(wide, pos));
        }
    }
    return utf8;
}

#endif

std::wstring Utf8ToWide(std::string_view utf8) {
    std::wstring wide;
    AppendUtf8ToWide(wide, utf8);
    return wide;
}

} // namespace platform::os
