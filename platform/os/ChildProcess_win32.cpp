#include "os/ChildProcess.h"

#include "os/CommandLine_win32.h"

#include <cstdint>
#include <windows.h>

namespace platform::os {

namespace {

// UTF-8, where an encoded surrogate becomes that lone UTF-16 unit (WTF-8).
std::wstring Wide(const std::string& text) {
    std::wstring wide;
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = [&](std::size_t at) {
            return at < text.size()
                       ? static_cast<std::uint32_t>(static_cast<unsigned char>(text[at]))
                       : 0u;
        };
        const std::uint32_t lead = byte(i);
        std::uint32_t code = 0xFFFD;
        std::size_t length = 1;
        if (lead < 0x80) {
            code = lead;
        } else if ((lead & 0xE0) == 0xC0) {
            code = ((lead & 0x1F) << 6) | (byte(i + 1) & 0x3F);
            length = 2;
        } else if ((lead & 0xF0) == 0xE0) {
            code = ((lead & 0x0F) << 12) | ((byte(i + 1) & 0x3F) << 6) | (byte(i + 2) & 0x3F);
            length = 3;
        } else if ((lead & 0xF8) == 0xF0) {
            code = ((lead & 0x07) << 18) | ((byte(i + 1) & 0x3F) << 12) |
                   ((byte(i + 2) & 0x3F) << 6) | (byte(i + 3) & 0x3F);
            length = 4;
        }
        if (code >= 0x10000) {
            code -= 0x10000;
            wide += static_cast<wchar_t>(0xD800 + (code >> 10));
            wide += static_cast<wchar_t>(0xDC00 + (code & 0x3FF));
        } else {
            wide += static_cast<wchar_t>(code);
        }
        i += length;
    }
    return wide;
}

HANDLE TemporaryFile(SECURITY_ATTRIBUTES* inherit) {
    wchar_t folder[MAX_PATH];
    wchar_t name[MAX_PATH];
    if (::GetTempPathW(MAX_PATH, folder) == 0 || ::GetTempFileNameW(folder, L"run", 0, name) == 0) {
        return INVALID_HANDLE_VALUE;
    }
    return ::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                         inherit, CREATE_ALWAYS,
                         FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

std::string ReadAll(HANDLE file) {
    std::string text;
    if (file == INVALID_HANDLE_VALUE) {
        return text;
    }
    ::SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    char buffer[4096];
    DWORD got = 0;
    while (::ReadFile(file, buffer, sizeof buffer, &got, nullptr) != 0 && got > 0) {
        text.append(buffer, got);
    }
    ::CloseHandle(file);
    return text;
}

} // namespace

ProgramRun RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                      int timeoutMs) {
    ProgramRun run;
    SECURITY_ATTRIBUTES inherit{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE out = TemporaryFile(&inherit);
    HANDLE err = TemporaryFile(&inherit);
    HANDLE in = ::CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit,
                              OPEN_EXISTING, 0, nullptr);
    std::vector<std::wstring> wideArguments;
    for (const std::string& argument : arguments) {
        wideArguments.push_back(Wide(argument));
    }
    std::wstring commandLine = CommandLine(Wide(program), wideArguments);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in;
    startup.hStdOutput = out;
    startup.hStdError = err;
    PROCESS_INFORMATION process{};
    if (out != INVALID_HANDLE_VALUE && err != INVALID_HANDLE_VALUE &&
        ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW,
                         nullptr, nullptr, &startup, &process) != 0) {
        run.started = true;
        if (::WaitForSingleObject(process.hProcess, static_cast<DWORD>(timeoutMs)) !=
            WAIT_OBJECT_0) {
            ::TerminateProcess(process.hProcess, 1);
            ::WaitForSingleObject(process.hProcess, INFINITE);
        } else {
            run.finished = true;
            DWORD code = 0;
            ::GetExitCodeProcess(process.hProcess, &code);
            run.exitCode = static_cast<int>(code);
        }
        ::CloseHandle(process.hThread);
        ::CloseHandle(process.hProcess);
    }
    if (in != INVALID_HANDLE_VALUE) {
        ::CloseHandle(in);
    }
    run.out = ReadAll(out);
    run.err = ReadAll(err);
    return run;
}

} // namespace platform::os
