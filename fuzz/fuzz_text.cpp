// The conversions between UTF-8 and wide text. The first byte chooses the direction; the rest is
// the text (for wide text, every four bytes one character). Each direction gives valid text of
// the other kind, and valid text makes the round trip unchanged.
#include "Require.h"
#include "os/TextConversion.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using vanto::fuzz::Require;

bool IsScalarValue(std::uint32_t c) {
    return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

// Strict UTF-8 (RFC 3629): shortest forms only, no surrogates, nothing beyond U+10FFFF.
bool IsValidUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const auto lead = static_cast<unsigned char>(text[i]);
        std::size_t length = 0;
        std::uint32_t c = 0;
        if (lead < 0x80) {
            ++i;
            continue;
        } else if ((lead & 0xE0) == 0xC0) {
            length = 2;
            c = lead & 0x1F;
        } else if ((lead & 0xF0) == 0xE0) {
            length = 3;
            c = lead & 0x0F;
        } else if ((lead & 0xF8) == 0xF0) {
            length = 4;
            c = lead & 0x07;
        } else {
            return false;
        }
        if (i + length > text.size()) {
            return false;
        }
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80) {
                return false;
            }
            c = (c << 6) | (next & 0x3F);
        }
        const std::uint32_t shortest = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
        if (c < shortest || !IsScalarValue(c)) {
            return false;
        }
        i += length;
    }
    return true;
}

// On this platform wchar_t holds code points.
static_assert(sizeof(wchar_t) == 4, "the harness runs where wide text is UTF-32");

bool IsValidWide(std::wstring_view text) {
    for (wchar_t c : text) {
        if (!IsScalarValue(static_cast<std::uint32_t>(c))) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::uint8_t* text = data + 1;
    const std::size_t length = size - 1;
    if (data[0] % 2 == 0) {
        const std::string_view utf8(reinterpret_cast<const char*>(text), length);
        const std::wstring wide = platform::os::Utf8ToWide(utf8);
        Require(IsValidWide(wide), "UTF-8 gives valid wide text");
        Require(utf8.empty() == wide.empty(), "only empty text gives empty text");
        if (IsValidUtf8(utf8)) {
            Require(platform::os::WideToUtf8(wide) == utf8, "valid UTF-8 comes back unchanged");
        }
    } else {
        std::wstring wide(length / sizeof(wchar_t), L'\0');
        std::memcpy(wide.data(), text, wide.size() * sizeof(wchar_t));
        const std::string utf8 = platform::os::WideToUtf8(wide);
        Require(IsValidUtf8(utf8), "wide text gives valid UTF-8");
        Require(utf8.empty() == wide.empty(), "only empty text gives empty text");
        if (IsValidWide(wide)) {
            Require(platform::os::Utf8ToWide(utf8) == wide, "valid wide text comes back unchanged");
        }
    }
    return 0;
}
