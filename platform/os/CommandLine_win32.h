// A Windows command line made of separate arguments, quoted so that CommandLineToArgvW and the C
// runtime split it into the same arguments again.
#pragma once

#include <string>
#include <vector>

namespace platform::os {

inline std::wstring QuotedArgument(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        // Backslashes are literal unless a quote follows: then each is doubled.
        quoted.append(c == L'"' ? backslashes * 2 + 1 : backslashes, L'\\');
        backslashes = 0;
        quoted += c;
    }
    quoted.append(backslashes * 2, L'\\');
    return quoted + L"\"";
}

inline std::wstring CommandLine(const std::wstring& program,
                                const std::vector<std::wstring>& arguments) {
    std::wstring line = QuotedArgument(program);
    for (const std::wstring& argument : arguments) {
        line += L" " + QuotedArgument(argument);
    }
    return line;
}

} // namespace platform::os
