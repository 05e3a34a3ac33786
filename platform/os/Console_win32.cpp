#include "os/Console.h"

#include <climits>
#include <cstdlib>
#include <windows.h>
// After windows.h, whose declarations it uses.
#include <shellapi.h>

namespace platform::os {

namespace {
HANDLE Handle(StandardStream stream) {
    return ::GetStdHandle(stream == StandardStream::Output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

// Strict conversion: an unpaired surrogate fails it instead of becoming U+FFFD.
std::string StrictUtf8(const wchar_t* wide) {
    const int length = ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide, -1, nullptr, 0,
                                             nullptr, nullptr);
    if (length < 1) {
        return std::string(1, '\xFF');
    }
    std::string narrow(static_cast<std::size_t>(length), '\0');
    ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide, -1, narrow.data(), length, nullptr,
                          nullptr);
    narrow.resize(static_cast<std::size_t>(length) - 1); // the terminating null
    return narrow;
}
} // namespace

bool IsTerminal(StandardStream stream) {
    DWORD mode = 0;
    return ::GetConsoleMode(Handle(stream), &mode) != 0;
}

bool PrepareTerminal(StandardStream stream) {
    const HANDLE handle = Handle(stream);
    DWORD mode = 0;
    if (::GetConsoleMode(handle, &mode) == 0) {
        return false;
    }
    ::SetConsoleOutputCP(CP_UTF8);
    return ::SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

std::vector<std::string> Utf8Arguments(int argc, char** argv) {
    int count = 0;
    wchar_t** wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (wide == nullptr) {
        return std::vector<std::string>(argv, argv + argc);
    }
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) {
        arguments.push_back(StrictUtf8(wide[i]));
    }
    ::LocalFree(wide);
    return arguments;
}

bool SetRuntimeEnvironmentValue(const char* name, const std::string& value) {
    return ::_putenv_s(name, value.c_str()) == 0;
}

} // namespace platform::os
