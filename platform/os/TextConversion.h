// Conversion between the host's wide text and UTF-8 (code page 65001, no flags).
#pragma once

#include <string>
#include <string_view>

namespace platform::os {

// Invalid, overlong, truncated or surrogate-encoding sequences become U+FFFD, exactly as many as
// the system converter yields for them; empty input or a failed conversion gives empty text.
std::wstring Utf8ToWide(std::string_view utf8);
// The same text appended to `wide`, which keeps what it held when the conversion fails.
void AppendUtf8ToWide(std::wstring& wide, std::string_view utf8);

// Unpaired surrogates (and, where wchar_t holds code points, values that are not scalar values)
// become U+FFFD; empty input or a failed conversion gives empty text.
std::string WideToUtf8(std::wstring_view wide);

} // namespace platform::os
