// Texts the emulator compares and makes: paths as keys, times, file kinds and random identifiers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vanto::emulator {

// ASCII letters folded to lower case.
std::string Lower(std::string_view text);
// How paths are compared, as Windows compares file names: either separator, case folded over all
// of Unicode (simple case folding), no trailing separator.
std::string PathKey(std::string_view path);
// Whether `path` is `folder` or lies below it (both compared as PathKey).
bool IsUnder(std::string_view path, std::string_view folder);
// The current time as an ISO 8601 UTC text, and seconds since the epoch.
std::string IsoTime(std::int64_t seconds);
// The same to the millisecond: "2026-11-24T01:02:03.456Z".
std::string IsoTimeMilliseconds(std::int64_t milliseconds);
// Now, in milliseconds since the epoch.
std::int64_t NowMilliseconds();
std::int64_t NowSeconds();
// Whether a file extension (with or without its dot, any case) is one of a CAD document.
bool IsCadExtension(std::string_view extension);
// A number after a prefix, at least six digits: "DOC-000012".
std::string Padded(const char* prefix, std::int64_t number);
// `bytes` random bytes as lower-case hex digits: session ids and the transport's secret.
std::string RandomHex(std::size_t bytes);
// Compares in time that does not depend on where the texts differ.
bool SameSecret(std::string_view given, std::string_view expected);

} // namespace vanto::emulator
