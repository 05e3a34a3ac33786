#ifdef _WIN32

#include "os/Process.h"

#include "os/CommandLine_win32.h"

#include <windows.h>

namespace platform::os {

std::wstring EnvironmentValue(const std::wstring& name) {
    const DWORD size = ::GetEnvironmentVariableW(name.c_str(), nullptr, 0);
    if (size == 0) {
        return std::wstring();
    }
    std::wstring value(size, L'\0');
    const DWORD length = ::GetEnvironmentVariableW(name.c_str(), value.data(), size);
    value.resize(length < size ? length : 0);
    return value;
}

bool SetEnvironmentValue(const std::wstring& name, const std::wstring& value) {
    return ::SetEnvironmentVariableW(name.c_str(), value.empty() ? nullptr : value.c_str()) != 0;
}

std::wstring UserDataDirectory() {
    return EnvironmentValue(L"LOCALAPPDATA");
}

std::wstring ModuleDirectory() {
    HMODULE module = nullptr;
    if (!::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                  GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                              reinterpret_cast<LPCWSTR>(&ModuleDirectory), &module)) {
        return std::wstring();
    }
    wchar_t buffer[MAX_PATH] = {};
    const DWORD length = ::GetModuleFileNameW(module, buffer, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return std::wstring();
    }
    const std::wstring path(buffer, length);
    const std::size_t separator = path.find_last_of(L"\\/");
    return separator == std::wstring::npos ? std::wstring() : path.substr(0, separator);
}

bool IsExecutableFile(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    return !path.empty() && attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

unsigned long LaunchDetached(const std::wstring& program,
                             const std::vector<std::wstring>& arguments) {
    std::wstring commandLine = CommandLine(program, arguments);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!::CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                          DETACHED_PROCESS | CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &startup,
                          &process)) {
        return 0;
    }
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return process.dwProcessId;
}

bool KillProcess(unsigned long pid) {
    HANDLE process = ::OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, pid);
    if (process == nullptr) {
        return false;
    }
    const bool killed = ::TerminateProcess(process, 1) != 0 &&
                        ::WaitForSingleObject(process, 10000) == WAIT_OBJECT_0;
    ::CloseHandle(process);
    return killed;
}

bool WaitForExit(unsigned long pid, int timeoutMs) {
    HANDLE process = ::OpenProcess(SYNCHRONIZE, FALSE, pid);
    if (process == nullptr) {
        return true; // gone already
    }
    const bool ended =
        ::WaitForSingleObject(process, static_cast<DWORD>(timeoutMs)) == WAIT_OBJECT_0;
    ::CloseHandle(process);
    return ended;
}

} // namespace platform::os

#endif
