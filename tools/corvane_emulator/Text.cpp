#include "Text.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <random>
#include <utility>

namespace vanto::emulator {

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

namespace {

// Unicode's simple case folding, generated at build time from Unicode's CaseFolding.txt.
constexpr std::pair<char32_t, char32_t> Folding[] = {
#include "CaseFolding.inc"
};

char32_t Folded(char32_t c) {
    const auto* found = std::lower_bound(std::begin(Folding), std::end(Folding), c,
                                         [](const std::pair<char32_t, char32_t>& entry,
                                            char32_t code) { return entry.first < code; });
    return found != std::end(Folding) && found->first == c ? found->second : c;
}

constexpr char32_t NotUtf8 = 0xFFFFFFFF;

// The code point of the UTF-8 sequence at text[at], and its length; NotUtf8 and 1 for a byte
// that starts no valid sequence.
std::pair<char32_t, std::size_t> Decode(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead < 0xC2   ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length == 0 || at + length > text.size()) {
        return {NotUtf8, 1};
    }
    char32_t code = lead & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return {NotUtf8, 1};
        }
        code = (code << 6) | (byte(i) & 0x3F);
    }
    return {code, length};
}

void Encode(char32_t code, std::string& out) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

} // namespace

std::string PathKey(std::string_view path) {
    std::string key;
    key.reserve(path.size());
    for (std::size_t at = 0; at < path.size();) {
        const auto [code, length] = Decode(path, at);
        if (code == NotUtf8) {
            key += path[at]; // kept as it is
        } else {
            Encode(code == '\\' ? U'/' : Folded(code), key);
        }
        at += length;
    }
    while (key.size() > 1 && key.back() == '/') {
        key.pop_back();
    }
    return key;
}

bool IsUnder(std::string_view path, std::string_view folder) {
    const std::string p = PathKey(path);
    const std::string f = PathKey(folder);
    if (f.empty() || p.size() < f.size() || p.compare(0, f.size(), f) != 0) {
        return false;
    }
    return p.size() == f.size() || f.back() == '/' || p[f.size()] == '/';
}

std::int64_t NowSeconds() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::string IsoTime(std::int64_t seconds) {
    // The civil date of a day count, the same on every system (H. Hinnant's days_from_civil
    // turned around): 400-year eras of 146097 days, years from March.
    const std::int64_t days = (seconds >= 0 ? seconds : seconds - 86399) / 86400;
    const std::int64_t secondOfDay = seconds - days * 86400;
    const std::int64_t z = days + 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t dayOfEra = z - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const std::int64_t day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
    const std::int64_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
    const std::int64_t year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    char text[128];
    std::snprintf(text, sizeof text, "%04lld-%02d-%02dT%02d:%02d:%02dZ",
                  static_cast<long long>(year), static_cast<int>(month), static_cast<int>(day),
                  static_cast<int>(secondOfDay / 3600), static_cast<int>(secondOfDay / 60 % 60),
                  static_cast<int>(secondOfDay % 60));
    return text;
}

std::string IsoTimeMilliseconds(std::int64_t milliseconds) {
    const std::int64_t seconds = (milliseconds >= 0 ? milliseconds : milliseconds - 999) / 1000;
    const auto fraction = static_cast<int>(milliseconds - seconds * 1000);
    std::string text = IsoTime(seconds);
    text.insert(text.size() - 1, {'.', static_cast<char>('0' + fraction / 100),
                                  static_cast<char>('0' + fraction / 10 % 10),
                                  static_cast<char>('0' + fraction % 10)});
    return text;
}

std::int64_t NowMilliseconds() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

bool IsCadExtension(std::string_view extension) {
    if (!extension.empty() && extension.front() == '.') {
        extension.remove_prefix(1);
    }
    // Parts, sheet-metal parts, drawings and assemblies, and drawings saved as .dft.
    static const char* const known[] = {"par", "psm", "asm", "pwd", "dft"};
    const std::string lower = Lower(extension);
    return std::any_of(std::begin(known), std::end(known),
                       [&](const char* k) { return lower == k; });
}

std::string Padded(const char* prefix, std::int64_t number) {
    char text[32];
    std::snprintf(text, sizeof text, "%s%06lld", prefix, static_cast<long long>(number));
    return text;
}

std::string RandomHex(std::size_t bytes) {
    static std::random_device device;
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes; ++i) {
        const unsigned value = device() & 0xFFU;
        text += digits[value >> 4];
        text += digits[value & 0xFU];
    }
    return text;
}

bool SameSecret(std::string_view given, std::string_view expected) {
    unsigned char difference = given.size() == expected.size() ? 0 : 1;
    for (std::size_t i = 0; i < given.size() && i < expected.size(); ++i) {
        difference |= static_cast<unsigned char>(given[i] ^ expected[i]);
    }
    return difference == 0;
}

} // namespace vanto::emulator
