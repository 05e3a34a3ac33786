#include "os/Process.h"

#include "os/CommandLine_win32.h"
#include "os/TextConversion.h"

#include <cstdio>
#include <vector>

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

LaunchedProgram LaunchDetached(const std::wstring& program,
                               const std::vector<std::wstring>& arguments) {
    std::wstring commandLine = CommandLine(program, arguments);
    // Its standard streams on the null device: the only handle it inherits, so that it holds
    // none of this process's open (a pipe it held would keep a reader of ours waiting).
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE nul = ::CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, 0, &inheritable, OPEN_EXISTING,
                               0, nullptr);
    if (nul == INVALID_HANDLE_VALUE) {
        return {};
    }
    SIZE_T size = 0;
    ::InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
    std::vector<char> attributes(size);
    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = startup.StartupInfo.hStdOutput = startup.StartupInfo.hStdError =
        nul;
    startup.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(attributes.data());
    const bool listed =
        ::InitializeProcThreadAttributeList(startup.lpAttributeList, 1, 0, &size) &&
        ::UpdateProcThreadAttribute(startup.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST,
                                    &nul, sizeof nul, nullptr, nullptr);
    PROCESS_INFORMATION process{};
    const bool started =
        listed &&
        ::CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                         DETACHED_PROCESS | CREATE_NEW_PROCESS_GROUP | EXTENDED_STARTUPINFO_PRESENT,
                         nullptr, nullptr, &startup.StartupInfo, &process);
    if (listed) {
        ::DeleteProcThreadAttributeList(startup.lpAttributeList);
    }
    ::CloseHandle(nul);
    if (process.hThread != nullptr) {
        ::CloseHandle(process.hThread);
    }
    if (process.hProcess != nullptr) {
        ::CloseHandle(process.hProcess);
    }
    return {started, started ? process.dwProcessId : 0};
}

namespace {

// Wine's own functions between Windows and Unix file names; absent on Windows itself.
template <class Function> Function WineFunction(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), name)));
}

// Whether the file is no Windows program (which begin with "MZ"): under Wine, a Unix one.
bool IsUnixProgram(const std::wstring& program) {
    std::FILE* file = ::_wfopen(program.c_str(), L"rb");
    if (file == nullptr) {
        return false;
    }
    char magic[2] = {};
    const bool windows = std::fread(magic, 1, 2, file) == 2 && magic[0] == 'M' && magic[1] == 'Z';
    std::fclose(file);
    return !windows;
}

} // namespace

std::wstring PathForProgram(const std::wstring& program, const std::wstring& path) {
    using ToUnix = char*(CDECL*)(LPCWSTR);
    const auto toUnix = WineFunction<ToUnix>("wine_get_unix_file_name");
    if (toUnix == nullptr || !IsUnixProgram(program)) {
        return path;
    }
    char* name = toUnix(path.c_str());
    const std::wstring unixName = name != nullptr ? Utf8ToWide(name) : std::wstring();
    ::HeapFree(::GetProcessHeap(), 0, name);
    return unixName;
}

std::wstring PathFromUnix(const std::string& unixPath) {
    using ToDos = WCHAR*(CDECL*)(LPCSTR);
    const auto toDos = WineFunction<ToDos>("wine_get_dos_file_name");
    WCHAR* name = toDos != nullptr ? toDos(unixPath.c_str()) : nullptr;
    const std::wstring dosName = name != nullptr ? name : L"";
    ::HeapFree(::GetProcessHeap(), 0, name);
    return dosName;
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
