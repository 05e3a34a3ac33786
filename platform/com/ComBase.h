/// @file
/// The few COM types the component and its hosts need. On Windows these are the system's own
/// (`<windows.h>`, `<objbase.h>`, `<unknwn.h>`); elsewhere they are declared here with Windows'
/// sizes, values and virtual slot order, so that a host compiled on either side sees the same
/// binary interface. The reference shows the declarations made here.
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

/// A COM result: 0 or more succeeded (S_OK, S_FALSE), negative failed (E_...).
using HRESULT = std::int32_t;
/// An unsigned 32-bit count, as AddRef and Release return.
using ULONG = std::uint32_t;
/// An unsigned 32-bit value.
using DWORD = std::uint32_t;
/// A 32-bit truth value: FALSE (0) or not.
using BOOL = std::int32_t;
/// An untyped pointer.
using LPVOID = void*;

#ifndef TRUE
/// BOOL true.
#define TRUE 1
#endif
#ifndef FALSE
/// BOOL false.
#define FALSE 0
#endif

/// The calling convention of interface methods (nothing outside Windows).
#define STDMETHODCALLTYPE
/// The calling convention of exported functions (nothing outside Windows).
#define STDAPICALLTYPE

/// A 128-bit identifier of a class or an interface, laid out as Windows lays it out.
struct GUID {
    std::uint32_t Data1;   ///< The first 8 hexadecimal digits.
    std::uint16_t Data2;   ///< The next 4.
    std::uint16_t Data3;   ///< The next 4.
    std::uint8_t Data4[8]; ///< The last 16, two to a byte.
};
/// An interface identifier.
using IID = GUID;
/// A class identifier.
using CLSID = GUID;
/// An interface identifier passed by reference.
using REFIID = const IID&;
/// A class identifier passed by reference.
using REFCLSID = const CLSID&;
/// An identifier passed by reference.
using REFGUID = const GUID&;

/// Whether two identifiers are the same (all 16 bytes).
/// @param a  One identifier.
/// @param b  The other.
/// @return True when they are equal.
inline bool operator==(const GUID& a, const GUID& b) {
    return std::memcmp(&a, &b, sizeof(GUID)) == 0;
}
/// Whether two identifiers differ.
/// @param a  One identifier.
/// @param b  The other.
/// @return True when they differ.
inline bool operator!=(const GUID& a, const GUID& b) {
    return !(a == b);
}
/// Whether two identifiers are the same.
/// @param a  One identifier.
/// @param b  The other.
/// @return True when they are equal.
inline bool IsEqualGUID(REFGUID a, REFGUID b) {
    return a == b;
}
/// Whether two interface identifiers are the same.
/// @param a  One identifier.
/// @param b  The other.
/// @return True when they are equal.
inline bool IsEqualIID(REFIID a, REFIID b) {
    return a == b;
}
/// Whether two class identifiers are the same.
/// @param a  One identifier.
/// @param b  The other.
/// @return True when they are equal.
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) {
    return a == b;
}

/// Success.
#define S_OK ((HRESULT)0)
/// Success, answering no (DllCanUnloadNow: keep the module loaded).
#define S_FALSE ((HRESULT)1)
/// Not implemented.
#define E_NOTIMPL ((HRESULT)0x80004001L)
/// The object does not have the interface asked for.
#define E_NOINTERFACE ((HRESULT)0x80004002L)
/// A pointer argument is null.
#define E_POINTER ((HRESULT)0x80004003L)
/// Failed; the component's log gives the reason.
#define E_FAIL ((HRESULT)0x80004005L)
/// An unexpected failure.
#define E_UNEXPECTED ((HRESULT)0x8000FFFFL)
/// Out of memory.
#define E_OUTOFMEMORY ((HRESULT)0x8007000EL)
/// An argument is not valid.
#define E_INVALIDARG ((HRESULT)0x80070057L)
/// The class cannot be aggregated.
#define CLASS_E_NOAGGREGATION ((HRESULT)0x80040110L)
/// The module does not make the class asked for.
#define CLASS_E_CLASSNOTAVAILABLE ((HRESULT)0x80040111L)
/// Whether an HRESULT means success.
#define SUCCEEDED(hr) (((HRESULT)(hr)) >= 0)
/// Whether an HRESULT means failure.
#define FAILED(hr) (((HRESULT)(hr)) < 0)

/// The identifier of IUnknown. {00000000-0000-0000-C000-000000000046}
inline constexpr IID IID_IUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
/// The identifier of IClassFactory. {00000001-0000-0000-C000-000000000046}
inline constexpr IID IID_IClassFactory = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// The base of every COM interface: asking for other interfaces and counting references.
struct IUnknown {
    /// Asks the object for another of its interfaces.
    /// @param[in] riid  The interface wanted.
    /// @param[out] ppvObject  Receives the interface, with a reference counted for the caller;
    /// null when the object does not have it.
    /// @return S_OK, or E_NOINTERFACE (E_POINTER when `ppvObject` is null).
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppvObject) = 0;
    /// Counts one more reference to the object.
    /// @return The new count (for diagnostics only).
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    /// Gives one reference back; the object goes when the last one is given back.
    /// @return The new count (for diagnostics only).
    virtual ULONG STDMETHODCALLTYPE Release() = 0;

protected:
    /// Not deleted through the interface: Release it.
    ~IUnknown() = default;
};

/// Makes the objects of one class (DllGetClassObject gives it).
struct IClassFactory : IUnknown {
    /// Makes a new object.
    /// @param[in] pUnkOuter  The outer object when the new one is aggregated, else null.
    /// @param[in] riid  The interface wanted (IID_IUnknown when aggregated).
    /// @param[out] ppvObject  Receives the interface; set to null first.
    /// @return S_OK, E_NOINTERFACE, E_OUTOFMEMORY (E_POINTER when `ppvObject` is null).
    virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* pUnkOuter, REFIID riid,
                                                     void** ppvObject) = 0;
    /// Keeps the module loaded (DllCanUnloadNow answers S_FALSE) while locked.
    /// @param[in] fLock  Non-zero locks once more, zero unlocks once.
    /// @return S_OK.
    virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL fLock) = 0;

protected:
    /// Not deleted through the interface: Release it.
    ~IClassFactory() = default;
};

#endif

#include <cstdint>
static_assert(sizeof(HRESULT) == 4, "HRESULT is 32-bit on every platform");
static_assert(sizeof(ULONG) == 4, "ULONG is 32-bit on every platform");
static_assert(sizeof(GUID) == 16, "GUID layout");

/// An HRESULT from its 32 bits, for literals above 0x7FFFFFFF, so that comparisons never mix
/// signedness.
/// @param bits  The HRESULT's bits, for example 0x80070490.
/// @return The HRESULT.
constexpr HRESULT HResultFromBits(std::uint32_t bits) {
    return static_cast<HRESULT>(bits);
}
