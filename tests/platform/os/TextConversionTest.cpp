#include "os/TextConversion.h"

#include <cstdio>
#include <cwchar>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

// Expectations are code points and bytes as the Windows converter (under Wine) gives them, so the
// same tables check our own converter on POSIX and the system calls on Windows.

namespace {

using platform::os::Utf8ToWide;
using platform::os::WideToUtf8;

using Bytes = std::vector<unsigned>;
using Points = std::vector<char32_t>;

constexpr char32_t R = 0xFFFD;

// Wide text holding the given values: values above U+FFFF become surrogate pairs where wchar_t is
// 16 bits; every other value, a lone surrogate included, is one wchar_t.
std::wstring Wide(const Points& points) {
    std::wstring wide;
    for (char32_t point : points) {
        if (sizeof(wchar_t) == 2 && point > 0xFFFF) {
            wide.push_back(static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10)));
            wide.push_back(static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
        } else {
            wide.push_back(static_cast<wchar_t>(point));
        }
    }
    return wide;
}

// Code points of a wide text; where wchar_t is 16 bits a high surrogate followed by a low one is
// one. Anything else stays as it is, so a stray surrogate shows up in the comparison.
Points CodePoints(const std::wstring& wide) {
    Points points;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        auto unit = static_cast<char32_t>(static_cast<std::make_unsigned_t<wchar_t>>(wide[i]));
        if (sizeof(wchar_t) == 2 && unit >= 0xD800 && unit <= 0xDBFF && i + 1 < wide.size() &&
            wide[i + 1] >= 0xDC00 && wide[i + 1] <= 0xDFFF) {
            unit = 0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(wide[++i]) - 0xDC00);
        }
        points.push_back(unit);
    }
    return points;
}

// Values in hexadecimal, so that a failure shows which one differs.
template <class Values> std::string Hex(const Values& values) {
    std::string text;
    char buffer[16];
    for (const auto value : values) {
        using Unsigned = std::make_unsigned_t<std::remove_const_t<decltype(value)>>;
        std::snprintf(buffer, sizeof buffer, " %02X", static_cast<unsigned>(Unsigned(value)));
        text += buffer;
    }
    return text;
}

template <class In, class Out> struct Case {
    const char* name;
    In in;
    Out expected;
};

void CheckDecoding(const std::vector<Case<Bytes, Points>>& cases) {
    for (const auto& c : cases) {
        const std::string utf8(c.in.begin(), c.in.end());
        EXPECT_EQ(Hex(CodePoints(Utf8ToWide(utf8))), Hex(c.expected)) << c.name;
    }
}

void CheckEncoding(const std::vector<Case<Points, Bytes>>& cases) {
    for (const auto& c : cases) {
        EXPECT_EQ(Hex(WideToUtf8(Wide(c.in))), Hex(c.expected)) << c.name;
    }
}

TEST(TextConversionTest, DecodesUtf8AsTheWindowsConverterDoes) {
    CheckDecoding({
        // Well-formed UTF-8 at every length boundary.
        {"empty", {}, {}},
        {"ascii", {0x41, 0x42, 0x43}, {0x41, 0x42, 0x43}},
        {"embedded nul", {0x41, 0x00, 0x42}, {0x41, 0x00, 0x42}},
        {"U+007F", {0x7F}, {0x7F}},
        {"U+0080", {0xC2, 0x80}, {0x80}},
        {"U+00E9", {0xC3, 0xA9}, {0xE9}},
        {"U+07FF", {0xDF, 0xBF}, {0x7FF}},
        {"U+0800", {0xE0, 0xA0, 0x80}, {0x800}},
        {"U+20AC", {0xE2, 0x82, 0xAC}, {0x20AC}},
        {"U+D7FF", {0xED, 0x9F, 0xBF}, {0xD7FF}},
        {"U+E000", {0xEE, 0x80, 0x80}, {0xE000}},
        {"U+FFFD itself", {0xEF, 0xBF, 0xBD}, {0xFFFD}},
        {"U+FFFF", {0xEF, 0xBF, 0xBF}, {0xFFFF}},
        {"U+10000", {0xF0, 0x90, 0x80, 0x80}, {0x10000}},
        {"U+1F600", {0xF0, 0x9F, 0x98, 0x80}, {0x1F600}},
        {"U+10FFFF", {0xF4, 0x8F, 0xBF, 0xBF}, {0x10FFFF}},
        // Overlong and out-of-range forms: the lead and the offending second byte make one
        // U+FFFD, each remaining byte another.
        {"C0 80", {0xC0, 0x80}, {R, R}},
        {"C1 BF", {0xC1, 0xBF}, {R, R}},
        {"E0 80 80", {0xE0, 0x80, 0x80}, {R, R}},
        {"E0 9F BF", {0xE0, 0x9F, 0xBF}, {R, R}},
        {"F0 80 80 80", {0xF0, 0x80, 0x80, 0x80}, {R, R, R}},
        {"F0 8F BF BF", {0xF0, 0x8F, 0xBF, 0xBF}, {R, R, R}},
        {"surrogate D800", {0xED, 0xA0, 0x80}, {R, R}},
        {"surrogate DFFF", {0xED, 0xBF, 0xBF}, {R, R}},
        {"encoded pair", {0xED, 0xA0, 0xBD, 0xED, 0xB8, 0x80}, {R, R, R, R}},
        {"U+110000", {0xF4, 0x90, 0x80, 0x80}, {R, R, R}},
        {"bad second byte then ascii", {0xE0, 0x80, 0x41}, {R, 0x41}},
        {"surrogate start then ascii", {0xED, 0xA0, 0x41}, {R, 0x41}},
        // Bytes that cannot start a sequence each yield one replacement.
        {"lone 80", {0x80}, {R}},
        {"lone BF", {0xBF}, {R}},
        {"continuations then ascii", {0x80, 0x80, 0x41}, {R, R, 0x41}},
        {"continuation inside ascii", {0x41, 0x80, 0x42}, {0x41, R, 0x42}},
        {"continuation after complete sequence", {0xC3, 0xA9, 0x80}, {0xE9, R}},
        {"C0 alone", {0xC0}, {R}},
        {"C1 then ascii", {0xC1, 0x41}, {R, 0x41}},
        {"F5", {0xF5}, {R}},
        {"F5 then ascii", {0xF5, 0x41}, {R, 0x41}},
        {"F5 80 80 80", {0xF5, 0x80, 0x80, 0x80}, {R, R, R, R}},
        {"F7 BF BF BF", {0xF7, 0xBF, 0xBF, 0xBF}, {R, R, R, R}},
        {"five-byte form", {0xF8, 0x88, 0x80, 0x80, 0x80}, {R, R, R, R, R}},
        {"six-byte form", {0xFC, 0x84, 0x80, 0x80, 0x80, 0x80}, {R, R, R, R, R, R}},
        {"FE", {0xFE}, {R}},
        {"FF then ascii", {0xFF, 0x41}, {R, 0x41}},
        // A sequence cut short by the end swallows the rest of the text.
        {"C3", {0x41, 0xC3}, {0x41, R}},
        {"E2", {0x41, 0xE2}, {0x41, R}},
        {"E2 82", {0x41, 0xE2, 0x82}, {0x41, R}},
        {"F0", {0x41, 0xF0}, {0x41, R}},
        {"F0 9F", {0x41, 0xF0, 0x9F}, {0x41, R}},
        {"F0 9F 98", {0x41, 0xF0, 0x9F, 0x98}, {0x41, R}},
        {"C0 at end", {0xC0}, {R}},
        {"overlong start", {0xE0, 0x80}, {R}},
        {"surrogate start", {0xED, 0xA0}, {R}},
        {"overlong four-byte start", {0xF0, 0x80, 0x80}, {R}},
        {"beyond U+10FFFF start", {0xF4, 0x90}, {R}},
        {"beyond U+10FFFF three bytes", {0xF4, 0x90, 0x80}, {R}},
        // Too few bytes left for what the lead announces: the ascii after it goes too.
        {"E2 then ascii", {0xE2, 0x41}, {R}},
        {"F0 9F then ascii", {0xF0, 0x9F, 0x41}, {R}},
        // A sequence broken inside the text yields one replacement and resumes.
        {"C3 then ascii", {0xC3, 0x41}, {R, 0x41}},
        {"E2 82 then ascii", {0xE2, 0x82, 0x41}, {R, 0x41}},
        {"F0 9F 98 then ascii", {0xF0, 0x9F, 0x98, 0x41}, {R, 0x41}},
        {"C3 then U+00E9", {0xC3, 0xC3, 0xA9}, {R, 0xE9}},
        {"E0 then U+00E9", {0xE0, 0xC3, 0xA9}, {R, 0xE9}},
        {"E2 82 then U+20AC", {0xE2, 0x82, 0xE2, 0x82, 0xAC}, {R, 0x20AC}},
        {"F0 9F 98 then U+1F600", {0xF0, 0x9F, 0x98, 0xF0, 0x9F, 0x98, 0x80}, {R, 0x1F600}},
    });
}

TEST(TextConversionTest, EncodesWideTextAsTheWindowsConverterDoes) {
    CheckEncoding({
        // Scalar values at every length boundary.
        {"empty", {}, {}},
        {"ascii", {0x41, 0x42}, {0x41, 0x42}},
        {"embedded nul", {0x41, 0x00, 0x42}, {0x41, 0x00, 0x42}},
        {"U+007F", {0x7F}, {0x7F}},
        {"U+0080", {0x80}, {0xC2, 0x80}},
        {"U+07FF", {0x7FF}, {0xDF, 0xBF}},
        {"U+0800", {0x800}, {0xE0, 0xA0, 0x80}},
        {"U+20AC", {0x20AC}, {0xE2, 0x82, 0xAC}},
        {"U+FFFD", {0xFFFD}, {0xEF, 0xBF, 0xBD}},
        {"U+FFFF", {0xFFFF}, {0xEF, 0xBF, 0xBF}},
        {"U+10000", {0x10000}, {0xF0, 0x90, 0x80, 0x80}},
        {"U+1F600", {0x1F600}, {0xF0, 0x9F, 0x98, 0x80}},
        {"U+10FFFF", {0x10FFFF}, {0xF4, 0x8F, 0xBF, 0xBF}},
        // Each unpaired surrogate becomes one replacement.
        {"high at end", {0x41, 0xD83D}, {0x41, 0xEF, 0xBF, 0xBD}},
        {"high before ascii", {0xD83D, 0x41}, {0xEF, 0xBF, 0xBD, 0x41}},
        {"lone low", {0xDE00}, {0xEF, 0xBF, 0xBD}},
        {"low inside ascii", {0x41, 0xDE00, 0x42}, {0x41, 0xEF, 0xBF, 0xBD, 0x42}},
        {"reversed pair", {0xDE00, 0xD83D}, {0xEF, 0xBF, 0xBD, 0xEF, 0xBF, 0xBD}},
        {"two highs", {0xD800, 0xDBFF}, {0xEF, 0xBF, 0xBD, 0xEF, 0xBF, 0xBD}},
        {"two lows", {0xDC00, 0xDC00}, {0xEF, 0xBF, 0xBD, 0xEF, 0xBF, 0xBD}},
        {"high before a pair", {0xD83D, 0x1F600}, {0xEF, 0xBF, 0xBD, 0xF0, 0x9F, 0x98, 0x80}},
    });
}

#if WCHAR_MAX > 0xFFFF
TEST(TextConversionTest, WideValuesThatAreNotScalarValuesBecomeReplacements) {
    // With 32-bit wchar_t each unit is a code point: surrogates never pair up.
    CheckEncoding({
        {"surrogate units in order", {0xD83D, 0xDE00}, {0xEF, 0xBF, 0xBD, 0xEF, 0xBF, 0xBD}},
        {"U+110000", {0x110000}, {0xEF, 0xBF, 0xBD}},
        {"largest positive", {0x7FFFFFFF}, {0xEF, 0xBF, 0xBD}},
        {"negative", {0xFFFFFFFF}, {0xEF, 0xBF, 0xBD}},
    });
}
#endif

TEST(TextConversionTest, EveryScalarValueSurvivesARoundTrip) {
    Points all;
    std::size_t expectedBytes = 0;
    for (char32_t point = 0; point <= 0x10FFFF; ++point) {
        if (point >= 0xD800 && point <= 0xDFFF) {
            continue;
        }
        all.push_back(point);
        expectedBytes += point < 0x80 ? 1 : point < 0x800 ? 2 : point < 0x10000 ? 3 : 4;
    }
    const std::string utf8 = WideToUtf8(Wide(all));
    EXPECT_EQ(utf8.size(), expectedBytes);
    EXPECT_TRUE(CodePoints(Utf8ToWide(utf8)) == all);
    // The wide form agrees with the compiler's: a surrogate pair where wchar_t is 16 bits.
    EXPECT_EQ(Utf8ToWide("\xF0\x9F\x98\x80"), std::wstring(L"\U0001F600"));
    EXPECT_EQ(WideToUtf8(L"\U0001F600"), std::string("\xF0\x9F\x98\x80"));
    EXPECT_TRUE(Utf8ToWide(std::string_view()).empty() && WideToUtf8(std::wstring_view()).empty());
}

} // namespace
