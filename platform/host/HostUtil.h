// Stand-in for the host utility library: error reports, host identity and per-user values.
#pragma once

#include "com/ComBase.h"
#include "host/GUserText.h"

// Reports a failed HRESULT with where it happened (written to the log sink as an HResultError).
void HRerrEx(HRESULT hr, const char* file, int line, const char* function);

int GetHostMajorVersion();
// Installation path of the host product; `which` 0 is the product folder.
void GetHostProductPath(int which, GUserText& path);

// Per-user values of the host. The buffer holds HostUserValueLength wide characters.
constexpr int HostUserValueLength = 260;
bool GetHostCommonUserValue(const wchar_t* name, wchar_t (&value)[HostUserValueLength], int scope);
bool SetHostCommonUserValue(const wchar_t* name, const wchar_t* value, int scope);

// Test seams of the stand-in.
namespace HostTesting {
void SetMajorVersion(int version);
void SetProductPath(const GUserText& path);
void ClearUserValues();
} // namespace HostTesting
