// The one barrier between the component's code and its caller: no exception crosses an interface
// method. An exception becomes the exception line and the method's failure result.
#pragma once

#include "log/VANTOLog.h"

#include <exception>
#include <utility>

namespace vanto {

// The prefix of a guard that writes no line (the mock writes no records).
inline constexpr const wchar_t* WithoutLine = nullptr;

// An exception type the method answers itself, and how: `handle(e)` gives the method's result.
template <class Exception, class Handler> struct Expected { Handler handle; };
template <class Exception, class Handler> Expected<Exception, Handler> Expect(Handler handler) {
    return {std::move(handler)};
}

namespace detail {
// No exception is of this type: the guard that expects none.
struct NothingExpected {};
} // namespace detail

// Runs `body` and gives its result; an exception of the expected type gives `expected.handle(e)`.
// Any other exception writes `prefix` followed by its text (ForeignExceptionText for one that is
// no std::exception) and gives `onFailure`; if writing the line throws too (no memory left), the
// result still goes back. What `body` already did to the caller's data stays.
template <class Result, class Body, class Exception, class Handler>
Result Guard(Result onFailure, const wchar_t* prefix, Body&& body,
             const Expected<Exception, Handler>& expected) noexcept {
    try {
        try {
            return std::forward<Body>(body)();
        } catch (const Exception& e) {
            return expected.handle(e);
        } catch (const std::exception& e) {
            if (prefix != WithoutLine) {
                LogExceptionText(prefix, e.what());
            }
        } catch (...) {
            if (prefix != WithoutLine) {
                LogExceptionText(prefix, ForeignExceptionText);
            }
        }
    } catch (...) {
        // The line or the handler failed in turn: the failure result still goes back.
    }
    return onFailure;
}

template <class Result, class Body>
Result Guard(Result onFailure, const wchar_t* prefix, Body&& body) noexcept {
    return Guard(onFailure, prefix, std::forward<Body>(body),
                 Expect<detail::NothingExpected>(
                     [onFailure](const detail::NothingExpected&) { return onFailure; }));
}

// For a method that gives nothing back.
template <class Body> void Guard(const wchar_t* prefix, Body&& body) noexcept {
    Guard(false, prefix, [&body] {
        std::forward<Body>(body)();
        return true;
    });
}

} // namespace vanto
