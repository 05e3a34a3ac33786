// Stand-in for the host utility library: error reports, host identity and per-user values.
#pragma once

#include "com/ComBase.h"
#include "host/GUserText.h"

#include <string>

// Reports a failed HRESULT with where it happened (written to the log sink as an HResultError).
void HRerrEx(HRESULT hr, const char* file, int line, const char* function);

int GetHostMajorVersion();
// Installation path of the host product; `which` 0 is the product folder. Unless a test sets it,
// the folder of the running executable.
void GetHostProductPath(int which, GUserText& path);

// Per-user values of the host, kept across runs (see os/UserValues.h); `scope` keeps groups of
// values apart. The buffer holds HostUserValueLength wide characters; a longer value is cut.
constexpr int HostUserValueLength = 260;
bool GetHostCommonUserValue(const wchar_t* name, wchar_t (&value)[HostUserValueLength], int scope);
bool SetHostCommonUserValue(const wchar_t* name, const wchar_t* value, int scope);

// Test seams of the stand-in.
namespace HostTesting {
void SetMajorVersion(int version);
void SetProductPath(const GUserText& path);
// Back to the executable's folder.
void UseDefaultProductPath();
// Moves the per-user values to a scratch store named `tag` (empty: back to the user's own).
void UseScratchUserValues(const std::wstring& tag);
// Removes every value of the scratch store.
void ClearUserValues();
} // namespace HostTesting
