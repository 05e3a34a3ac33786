// The few COM types the component and its hosts need. On Windows these are the system's own;
// elsewhere they are declared here with Windows' sizes, values and virtual slot order, so that a
// host compiled on either side sees the same binary interface.
#pragma once

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
// The GDI part of <windows.h> is not needed, and its macros (ERROR, GetObject, ...) would replace
// ordinary names in the component's code.
#ifndef NOGDI
#define NOGDI
#endif
#include <windows.h>

#include <objbase.h>
#include <unknwn.h>

#else

#include <cstdint>
#include <cstring>

using HRESULT = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using BOOL = std::int32_t;
using LPVOID = void*;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using REFGUID = const GUID&;

inline bool operator==(const GUID& a, const GUID& b) {
    return std::memcmp(&a, &b, sizeof(GUID)) == 0;
}
inline bool operator!=(const GUID& a, const GUID& b) {
    return !(a == b);
}
inline bool IsEqualGUID(REFGUID a, REFGUID b) {
    return a == b;
}
inline bool IsEqualIID(REFIID a, REFIID b) {
    return a == b;
}
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) {
    return a == b;
}

#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001L)
#define E_NOINTERFACE ((HRESULT)0x80004002L)
#define E_POINTER ((HRESULT)0x80004003L)
#define E_FAIL ((HRESULT)0x80004005L)
#define E_UNEXPECTED ((HRESULT)0x8000FFFFL)
#define E_OUTOFMEMORY ((HRESULT)0x8007000EL)
#define E_INVALIDARG ((HRESULT)0x80070057L)
#define CLASS_E_NOAGGREGATION ((HRESULT)0x80040110L)
#define CLASS_E_CLASSNOTAVAILABLE ((HRESULT)0x80040111L)
#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
#define FAILED(hr) (((HRESULT)(hr)) < 0)

// {00000000-0000-0000-C000-000000000046}
inline constexpr IID IID_IUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
// {00000001-0000-0000-C000-000000000046}
inline constexpr IID IID_IClassFactory = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppvObject) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
    ~IUnknown() = default;
};

struct IClassFactory : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* pUnkOuter, REFIID riid,
                                                     void** ppvObject) = 0;
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) = 0;

protected:
    ~IClassFactory() = default;
};

#endif

#include <cstdint>
static_assert(sizeof(HRESULT) == 4, "HRESULT is 32-bit on every platform");
static_assert(sizeof(ULONG) == 4, "ULONG is 32-bit on every platform");
static_assert(sizeof(GUID) == 16, "GUID layout");

// HRESULT literals above 0x7FFFFFFF, spelled once so that comparisons never mix signedness.
constexpr HRESULT HResultFromBits(std::uint32_t bits) {
    return static_cast<HRESULT>(bits);
}
