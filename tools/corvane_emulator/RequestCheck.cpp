#include "RequestCheck.h"

#include <algorithm>
#include <cstdint>

namespace vanto::emulator {

namespace {

namespace json = boost::json;
using vanto::protocol::Kind;
using vanto::protocol::Schema;

// Longer than any path or identifier a client has reason to send.
constexpr std::size_t MaxTextBytes = 64 * 1024;

bool IsText(const json::value& value) {
    return value.is_string() && value.get_string().size() <= MaxTextBytes;
}

bool IsInt32(const json::value& value) {
    if (value.is_int64()) {
        const std::int64_t v = value.get_int64();
        return v >= INT32_MIN && v <= INT32_MAX;
    }
    return value.is_uint64() && value.get_uint64() <= INT32_MAX;
}

bool AllOf(const json::value& value, bool (*test)(const json::value&)) {
    if (!value.is_array()) {
        return false;
    }
    const json::array& array = value.get_array();
    return std::all_of(array.begin(), array.end(), test);
}

// Keys that name no member are not read, but an overlong text in them is refused all the same.
bool NoLongText(const json::value& value) {
    if (value.is_string()) {
        return IsText(value);
    }
    if (value.is_array()) {
        return AllOf(value, NoLongText);
    }
    if (value.is_object()) {
        for (const auto& [key, member] : value.get_object()) {
            if (key.size() > MaxTextBytes || !NoLongText(member)) {
                return false;
            }
        }
    }
    return true;
}

bool MatchesField(const vanto::protocol::Field& field, const json::value& value) {
    switch (field.kind) {
    case Kind::Text:
        return IsText(value);
    case Kind::Integer:
        return IsInt32(value);
    case Kind::Flag:
        return value.is_bool();
    case Kind::Texts:
        return AllOf(value, IsText);
    case Kind::Integers:
        return AllOf(value, IsInt32);
    case Kind::Record:
        return MatchesSchema(value, field.nested());
    case Kind::Records:
        if (!value.is_array()) {
            return false;
        }
        for (const json::value& element : value.get_array()) {
            if (!MatchesSchema(element, field.nested())) {
                return false;
            }
        }
        return true;
    }
    return false;
}

} // namespace

// Depth is bounded by the parser's limit, so the recursion is too.
bool MatchesSchema(const json::value& value, const Schema& schema) {
    if (!value.is_object()) {
        return false;
    }
    for (const auto& [key, member] : value.get_object()) {
        // A lambda may not capture a structured binding before C++20 (clang refuses it).
        const std::string_view name = key;
        const auto* field =
            std::find_if(schema.fields, schema.fields + schema.count,
                         [&](const vanto::protocol::Field& f) { return f.key == name; });
        const bool known = field != schema.fields + schema.count;
        if (known ? !MatchesField(*field, member) : !NoLongText(member)) {
            return false;
        }
    }
    return true;
}

std::optional<json::value> ParseRequest(std::string_view text, json::storage_ptr storage) {
    json::parse_options options;
    options.max_depth = vanto::protocol::MaxJsonDepth;
    options.allow_invalid_utf8 = false;
    boost::system::error_code error;
    json::value value = json::parse(json::string_view(text.data(), text.size()), error,
                                    std::move(storage), options);
    if (error || !value.is_object()) {
        return std::nullopt;
    }
    return value;
}

bool IsAcceptableRequest(std::string_view text, const Schema* schema) {
    json::monotonic_resource memory;
    const auto value = ParseRequest(text, &memory);
    return value && (schema == nullptr || MatchesSchema(*value, *schema));
}

} // namespace vanto::emulator
