#include "os/TextConversion.h"

#include <cstdio>
#include <cwchar>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

// Expectations are code points and bytes as the Windows converter (under Wine) gives them, so the
// same tables check our own converter on POSIX and the system calls on Windows. A case is written
// "input > expected" in hexadecimal, R standing for the replacement character U+FFFD.

namespace {

using platform::os::Utf8ToWide;
using platform::os::WideToUtf8;

using Points = std::vector<char32_t>;

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

// Values written in hexadecimal and separated by spaces; "R" stands for `replacement`.
Points Values(const std::string& text, const Points& replacement) {
    Points values;
    std::istringstream in(text);
    for (std::string token; in >> token;) {
        if (token == "R") {
            values.insert(values.end(), replacement.begin(), replacement.end());
        } else {
            values.push_back(static_cast<char32_t>(std::stoul(token, nullptr, 16)));
        }
    }
    return values;
}

// The units of a text in hexadecimal, so that a failure shows which one differs; a stray
// surrogate shows up as a unit of its own.
template <class Text> std::string Hex(const Text& units) {
    std::string text;
    char buffer[16];
    for (const auto unit : units) {
        using Unsigned = std::make_unsigned_t<std::remove_const_t<decltype(unit)>>;
        std::snprintf(buffer, sizeof buffer, " %02X", static_cast<unsigned>(Unsigned(unit)));
        text += buffer;
    }
    return text;
}

// Checks every case of `table`, written "input > expected" and separated by "|": `convert` takes
// the input's values and gives the units to compare with `expected` (its R is `replacement`).
template <class Expected, class Convert>
void Check(const std::string& table, const Points& replacement, Expected expected,
           Convert convert) {
    std::istringstream cases(table);
    for (std::string text; std::getline(cases, text, '|');) {
        SCOPED_TRACE(text);
        const std::size_t arrow = text.find('>');
        ASSERT_NE(std::string::npos, arrow);
        EXPECT_EQ(Hex(expected(Values(text.substr(arrow + 1), replacement))),
                  Hex(convert(Values(text.substr(0, arrow), {}))));
    }
}

// Bytes to wide text; R is U+FFFD.
void CheckDecoding(const std::string& table) {
    Check(table, {0xFFFD}, Wide,
          [](const Points& bytes) { return Utf8ToWide(std::string(bytes.begin(), bytes.end())); });
}

// Code points to bytes; R is U+FFFD in UTF-8, EF BF BD.
void CheckEncoding(const std::string& table) {
    Check(
        table, {0xEF, 0xBF, 0xBD}, [](const Points& bytes) { return bytes; },
        [](const Points& points) { return WideToUtf8(Wide(points)); });
}

TEST(TextConversionTest, DecodesUtf8AsTheWindowsConverterDoes) {
    CheckDecoding(
        // The empty text, then well-formed UTF-8 at every length boundary.
        " > | 41 00 42 > 41 00 42 | 7F > 7F | C2 80 > 80 | DF BF > 7FF | E0 A0 80 > 800 | "
        "ED 9F BF > D7FF | EE 80 80 > E000 | EF BF BF > FFFF | F0 90 80 80 > 10000 | "
        "F4 8F BF BF > 10FFFF | "
        // Overlong and out-of-range forms: the lead and the offending second byte make one
        // U+FFFD, each remaining byte another.
        "C0 80 > R R | C1 BF > R R | E0 9F BF > R R | F0 8F BF BF > R R R | ED A0 80 > R R | "
        "ED BF BF > R R | ED A0 BD ED B8 80 > R R R R | F4 90 80 80 > R R R | E0 80 41 > R 41 | "
        // Bytes that cannot start a sequence each yield one replacement.
        "80 > R | 80 80 41 > R R 41 | 41 80 42 > 41 R 42 | C3 A9 80 > E9 R | C0 > R | "
        "F5 41 > R 41 | F7 BF BF BF > R R R R | F8 88 80 80 80 > R R R R R | FE > R | FF 41 > R 41 "
        "| "
        // A sequence cut short by the end swallows the rest of the text.
        "41 C3 > 41 R | 41 E2 82 > 41 R | 41 F0 > 41 R | 41 F0 9F 98 > 41 R | E0 80 > R | "
        "ED A0 > R | F0 80 80 > R | F4 90 80 > R | "
        // Too few bytes left for what the lead announces: the ascii after it goes too.
        "E2 41 > R | F0 9F 41 > R | "
        // A sequence broken inside the text yields one replacement and resumes.
        "C3 41 > R 41 | E2 82 41 > R 41 | F0 9F 98 41 > R 41 | E0 C3 A9 > R E9 | "
        "E2 82 E2 82 AC > R 20AC | F0 9F 98 F0 9F 98 80 > R 1F600 | "
        // ASCII is taken eight bytes at a time: runs that end inside such a word.
        "41 42 43 44 45 46 47 48 49 > 41 42 43 44 45 46 47 48 49 | "
        "41 42 43 44 45 46 47 C3 A9 48 > 41 42 43 44 45 46 47 E9 48 | "
        "41 42 43 44 45 46 47 48 80 41 > 41 42 43 44 45 46 47 48 R 41");
    // Long texts go through a buffer of 4096 units: a sequence across its end.
    for (const std::size_t before : {4088, 4093, 4094, 4095}) {
        SCOPED_TRACE(before);
        EXPECT_TRUE(Utf8ToWide(std::string(before, 'a') + "\xC3\xA9" + std::string(20, 'b')) ==
                    std::wstring(before, L'a') + L"\u00E9" + std::wstring(20, L'b'));
    }
}

TEST(TextConversionTest, EncodesWideTextAsTheWindowsConverterDoes) {
    CheckEncoding(
        // The empty text, then scalar values at every length boundary.
        " > | 41 00 42 > 41 00 42 | 7F > 7F | 80 > C2 80 | 7FF > DF BF | 800 > E0 A0 80 | "
        "FFFF > EF BF BF | 10000 > F0 90 80 80 | 10FFFF > F4 8F BF BF | "
        // Each unpaired surrogate becomes one replacement.
        "41 D83D > 41 R | D83D 41 > R 41 | 41 DE00 42 > 41 R 42 | DE00 D83D > R R | "
        "D800 DBFF > R R | DC00 DC00 > R R | D83D 1F600 > R F0 9F 98 80");
}

#if WCHAR_MAX > 0xFFFF
TEST(TextConversionTest, WideValuesThatAreNotScalarValuesBecomeReplacements) {
    // With 32-bit wchar_t each unit is a code point: surrogates never pair up.
    CheckEncoding("D83D DE00 > R R | 110000 > R | 7FFFFFFF > R | FFFFFFFF > R");
}
#endif

TEST(TextConversionTest, EveryScalarValueSurvivesARoundTrip) {
    Points all;
    for (char32_t point = 0; point <= 0x10FFFF; ++point) {
        if (point < 0xD800 || point > 0xDFFF) {
            all.push_back(point);
        }
    }
    const std::wstring wide = Wide(all);
    EXPECT_TRUE(Utf8ToWide(WideToUtf8(wide)) == wide);
    // The tables' wide form agrees with the compiler's: a surrogate pair where wchar_t is 16 bits.
    EXPECT_EQ(Wide({0x1F600}), std::wstring(L"\U0001F600"));
}

} // namespace
