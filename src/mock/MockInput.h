// The mock's input file: where it is and how deep its elements may nest. Apart from the store, so
// that a host tool can check a file the mock would read as empty.
#pragma once

#include <cstddef>
#include <string_view>

namespace vanto::mock {

// The input file, as a Windows path (os/Paths.h maps it elsewhere).
inline constexpr const wchar_t* InputFilePath = L"Z:\\PDM\\VANTO\\Dev\\VANTOInput.xml";

// Deeper element nesting than this marks an input file as malformed.
inline constexpr std::size_t MaxInputNesting = 256;

// How deep Boost's XML reader would nest elements reading `xml`, counted up to where it would
// end or fail. The reader recurses once per level; this follows its rules for markup in one flat
// pass, so that too deep a file can be refused before the reader runs.
std::size_t DeepestNesting(std::string_view xml);

} // namespace vanto::mock
