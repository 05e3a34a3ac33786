// The check behind code 7: whether a request is text the emulator reads at all, and whether the
// values of its keys are of the kinds its command's input has.
#pragma once

#include "protocol/RecordIO.h"

#include <boost/json.hpp>

#include <optional>
#include <string_view>

namespace vanto::emulator {

// One JSON object of limited depth in valid UTF-8, its memory from `storage`; empty otherwise.
std::optional<boost::json::value> ParseRequest(std::string_view text,
                                               boost::json::storage_ptr storage);

// Whether every key of `value` that names a member of `schema` holds a value of the member's
// kind, all the way down, and no text in it is overlong.
bool MatchesSchema(const boost::json::value& value, const vanto::protocol::Schema& schema);

// Whether `text` is one JSON document the reader accepts, and, when `schema` is given, matches it.
bool IsAcceptableRequest(std::string_view text, const vanto::protocol::Schema* schema);

} // namespace vanto::emulator
