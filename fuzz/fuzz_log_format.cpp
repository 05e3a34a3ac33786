// The log formatter with any format and any arguments. Bytes are characters; a byte 0x01 ends
// the format and each argument, and an argument that is the single byte 0x02 is a null pointer.
#include "Require.h"
#include "log/VANTOLog.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using vanto::fuzz::Require;

constexpr std::size_t MaxArguments = 4;
constexpr std::size_t NullText = 6; // "(null)"

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::wstring> parts(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0x01) {
            if (parts.size() > MaxArguments) {
                break;
            }
            parts.emplace_back();
        } else {
            parts.back() += static_cast<wchar_t>(data[i]);
        }
    }
    const std::wstring& format = parts.front();
    std::vector<const wchar_t*> args;
    std::size_t longest = format.size();
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const bool null = parts[i] == L"\x02";
        args.push_back(null ? nullptr : parts[i].c_str());
        longest += null ? NullText : parts[i].size();
    }

    std::wstring text;
    switch (args.size()) {
    case 0:
        text = vanto::FormatLogText(format, {});
        break;
    case 1:
        text = vanto::FormatLogText(format, {args[0]});
        break;
    case 2:
        text = vanto::FormatLogText(format, {args[0], args[1]});
        break;
    case 3:
        text = vanto::FormatLogText(format, {args[0], args[1], args[2]});
        break;
    default:
        text = vanto::FormatLogText(format, {args[0], args[1], args[2], args[3]});
        break;
    }
    Require(text.size() <= longest, "the text holds the format and the arguments at most");
    if (format.find(L'%') == std::wstring::npos) {
        Require(text == format, "a format without conversions is the text");
    }
    return 0;
}
