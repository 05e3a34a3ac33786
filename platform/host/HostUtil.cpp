#include "host/HostUtil.h"

#include "host/HostLog.h"

#include <cwchar>
#include <map>
#include <string>

namespace {

struct HostState {
    int majorVersion = 2024;
    GUserText productPath;
    std::map<std::wstring, std::wstring> userValues;
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
    path = State().productPath;
}

bool GetHostCommonUserValue(const wchar_t* name, wchar_t (&value)[HostUserValueLength],
                            int /*scope*/) {
    value[0] = L'\0';
    if (name == nullptr) {
        return false;
    }
    const auto found = State().userValues.find(name);
    if (found == State().userValues.end()) {
        return false;
    }
    const std::wstring& text = found->second;
    const std::size_t length =
        text.size() < HostUserValueLength - 1 ? text.size() : HostUserValueLength - 1;
    text.copy(value, length);
    value[length] = L'\0';
    return true;
}

bool SetHostCommonUserValue(const wchar_t* name, const wchar_t* value, int /*scope*/) {
    if (name == nullptr) {
        return false;
    }
    State().userValues[name] = value != nullptr ? value : L"";
    return true;
}

namespace HostTesting {
void SetMajorVersion(int version) {
    State().majorVersion = version;
}
void SetProductPath(const GUserText& path) {
    State().productPath = path;
}
void ClearUserValues() {
    State().userValues.clear();
}
} // namespace HostTesting
