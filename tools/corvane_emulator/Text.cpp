#include "Text.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <random>

namespace vanto::emulator {

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

std::string PathKey(std::string_view path) {
    std::string key;
    key.reserve(path.size());
    for (char c : path) {
        if (c == '\\') {
            c = '/';
        } else if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
        key += c;
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
    const std::time_t time = static_cast<std::time_t>(seconds);
    std::tm fields{};
    gmtime_r(&time, &fields);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &fields);
    return text;
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

} // namespace vanto::emulator
