#include "host/HostUtil.h"

#include "host/HostLog.h"
#include "os/ProcessInfo.h"
#include "os/UserValues.h"

#include <optional>
#include <string>

namespace {

struct HostState {
    int majorVersion = 2024;
    std::optional<GUserText> productPath;
};

HostState& State() {
    static HostState state;
    return state;
}

} // namespace

void HRerrEx(HRESULT hr, const char* file, int line, const char* function) {
    LogRecord record;
    record.kind = LogRecord::Kind::HResultError;
    record.hr = hr;
    record.file = file != nullptr ? file : "";
    record.line = line;
    record.function = function != nullptr ? function : "";
    WriteLogRecord(record);
}

int GetHostMajorVersion() {
    return State().majorVersion;
}

void GetHostProductPath(int /*which*/, GUserText& path) {
    path =
        State().productPath ? *State().productPath : GUserText(platform::os::ExecutableDirectory());
}

bool GetHostCommonUserValue(const wchar_t* name, wchar_t (&value)[HostUserValueLength], int scope) {
    value[0] = L'\0';
    if (name == nullptr) {
        return false;
    }
    std::wstring text;
    if (!platform::os::ReadUserValue(scope, name, text)) {
        return false;
    }
    const std::size_t length =
        text.size() < HostUserValueLength - 1 ? text.size() : HostUserValueLength - 1;
    text.copy(value, length);
    value[length] = L'\0';
    return true;
}

bool SetHostCommonUserValue(const wchar_t* name, const wchar_t* value, int scope) {
    if (name == nullptr) {
        return false;
    }
    return platform::os::WriteUserValue(scope, name, value != nullptr ? value : L"");
}

namespace HostTesting {
void SetMajorVersion(int version) {
    State().majorVersion = version;
}
void SetProductPath(const GUserText& path) {
    State().productPath = path;
}
void UseDefaultProductPath() {
    State().productPath.reset();
}
void UseScratchUserValues(const std::wstring& tag) {
    platform::os::UseScratchUserValueStore(tag);
}
void ClearUserValues() {
    platform::os::ClearUserValueStore();
}
} // namespace HostTesting
