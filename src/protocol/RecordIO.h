// One writer and one reader for every protocol record.
//
// A record states its fields once, with VANTO_JSON_FIELDS (Boost.Describe): the member's name is
// its JSON key and the member's type its kind. SchemaOf<T>() turns that description into a table
// (base members first) that the writer and the reader in RecordIO.cpp walk; no record has JSON code
// of its own.
//
// No PropertyTree stands in between: the reader takes Boost.JSON's parser events straight into the
// records and the writer writes the text straight from them, so no part of a record is written or
// parsed twice.
//
// Writing (ToJson): one compact JSON object, keys in declared order, base keys first. Every text,
// integer, flag and list key is always written ("" and [] when empty); a record member is
// written only when it is set (never as null). Texts are written byte for byte, escaping only
// what JSON requires. Any failure gives an empty text.
//
// Reading (the constructor from a JSON text): the text is read as one JSON document (RFC 8259;
// a leading UTF-8 byte-order mark is skipped; nesting deeper than MaxJsonDepth, invalid UTF-8,
// lone surrogate escapes, trailing data and exponents beyond the parser's range make it invalid).
// A text that is not one valid document changes nothing, so a new record keeps all defaults.
// Otherwise every key that names a member and holds data of the member's kind replaces it:
//   - text: a string; integer: a whole number within the signed 32-bit range; flag: true/false;
//   - list: a non-empty array; the new list replaces the old one, it is never appended to;
//   - record: an object with at least one key (even one that names no member).
// Anything else counts as "no data" and leaves the member as it was: null, an empty array, {},
// a value of another kind, a number beyond 32 bits or written with a fraction or an exponent.
// Inside an array every element gives one list element, so positions are kept; an element of
// the wrong kind gives the element's default ("", 0, or a record with defaults). Unknown keys
// are ignored; a key given twice is read twice, in text order. Nothing is thrown. Should memory
// run out, reading stops there and the members completed before it are kept.
#pragma once

#include "core/AllocatableObject.h"
#include "core/DynamicArray.h"
#include "core/TevString.h"
#include "core/UniquePtr.h"

#include <boost/describe/class.hpp>
#include <boost/describe/members.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace vanto::protocol {

// Real answers nest about ten levels; anything far deeper is not an answer.
inline constexpr std::size_t MaxJsonDepth = 64;

enum class Kind : std::uint8_t { Text, Integer, Flag, Texts, Integers, Record, Records };

struct Schema;

// A key as three words that tell it from any other key up to 16 characters long: its length and
// its first and last eight characters, read so that they overlap in the middle and never past its
// end. A longer key also needs its middle compared. A key then matches a member with one test
// instead of a loop whose end the processor cannot foresee.
struct KeyWords {
    std::uint64_t size = 0;
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
};

inline KeyWords WordsOf(std::string_view key) noexcept {
    const auto word = [&key](auto type, std::size_t at) {
        std::memcpy(&type, key.data() + at, sizeof type);
        return std::uint64_t{type};
    };
    const std::size_t n = key.size();
    KeyWords words;
    words.size = n;
    if (n >= sizeof(std::uint64_t)) {
        words.head = word(std::uint64_t{}, 0);
        words.tail = word(std::uint64_t{}, n - sizeof(std::uint64_t));
    } else if (n >= sizeof(std::uint32_t)) {
        words.head = word(std::uint32_t{}, 0) | word(std::uint32_t{}, n - sizeof(std::uint32_t))
                                                    << 32;
    } else if (n > 0) {
        words.head = word(std::uint8_t{}, 0) | word(std::uint8_t{}, n / 2) << 8 |
                     word(std::uint8_t{}, n - 1) << 16;
    }
    return words;
}

struct Field {
    std::string_view key;
    KeyWords words;
    // The key as the writer puts it after a previous member: ,"Key":
    std::string_view keyText;
    Kind kind;
    // Where the member lies inside a record of the schema's type, in bytes.
    std::ptrdiff_t offset;
    // Record and Records: the schema of the nested record type.
    const Schema& (*nested)() noexcept;
};

// The member that `field` names inside `record`.
inline void* MemberOf(const Field& field, void* record) noexcept {
    return static_cast<char*>(record) + field.offset;
}
inline const void* MemberOf(const Field& field, const void* record) noexcept {
    return static_cast<const char*>(record) + field.offset;
}

// A record type with its type erased: its fields and how to make, own and list its records.
struct Schema {
    const Field* fields;
    std::size_t count;
    void* (*create)();
    void (*destroy)(void* record) noexcept;
    // On a Core::UniquePtr<R> member.
    void (*adopt)(void* member, void* record) noexcept;
    const void* (*get)(const void* member) noexcept;
    void (*moveRecord)(void* to, void* from) noexcept;
    // On a Core::DynamicArray<Core::UniquePtr<R>> member: puts a new list of the `count` records
    // at `records` in its place, the old one released. Takes the records over, also when it
    // throws (it then destroys them and leaves the member as it was).
    void (*setList)(void* member, void* const* records, std::size_t count);
    void (*moveList)(void* to, void* from) noexcept;
    std::size_t (*listSize)(const void* list) noexcept;
    const void* (*listAt)(const void* list, std::size_t index) noexcept;
};

// Reads `json` into `record` as the header comment describes. Never throws.
void ReadRecord(void* record, const Schema& schema, std::string_view json) noexcept;
// The record as one JSON object; empty on failure. Never throws.
Core::TevString WriteRecord(const void* record, const Schema& schema) noexcept;

namespace detail {

template <class M> struct KindOf;
template <> struct KindOf<Core::TevString> { static constexpr Kind value = Kind::Text; };
template <> struct KindOf<std::int32_t> { static constexpr Kind value = Kind::Integer; };
template <> struct KindOf<bool> { static constexpr Kind value = Kind::Flag; };
template <> struct KindOf<Core::DynamicArray<Core::TevString>> {
    static constexpr Kind value = Kind::Texts;
};
template <> struct KindOf<Core::DynamicArray<std::int32_t>> {
    static constexpr Kind value = Kind::Integers;
};
template <class R> struct KindOf<Core::UniquePtr<R>> {
    static constexpr Kind value = Kind::Record;
    using Element = R;
};
template <class R> struct KindOf<Core::DynamicArray<Core::UniquePtr<R>>> {
    static constexpr Kind value = Kind::Records;
    using Element = R;
};

template <class M, class = void> struct ElementOf { using type = void; };
template <class M> struct ElementOf<M, std::void_t<typename KindOf<M>::Element>> {
    using type = typename KindOf<M>::Element;
};

// ,"Key": spelled out at compile time, so that writing a key is one copy.
template <class D> struct KeyText {
    static constexpr std::size_t length = std::char_traits<char>::length(D::name);
    static constexpr std::array<char, length + 4> Make() noexcept {
        std::array<char, length + 4> spelled{};
        spelled[0] = ',';
        spelled[1] = '"';
        for (std::size_t i = 0; i < length; ++i) {
            spelled[2 + i] = D::name[i];
        }
        spelled[length + 2] = '"';
        spelled[length + 3] = ':';
        return spelled;
    }
    static constexpr std::array<char, length + 4> text = Make();
};

// Where the member `pointer` lies inside a T. In the C++ ABI of every compiler this is built with
// (the Itanium ABI, MinGW's included) a pointer to a data member is that offset as a ptrdiff_t;
// records have no virtual bases. Reading a member through an offset costs the reader an addition
// instead of a call through a pointer for every value.
template <class T, class M> std::ptrdiff_t OffsetOf(M T::*pointer) noexcept {
    static_assert(sizeof pointer == sizeof(std::ptrdiff_t), "a data member pointer is an offset");
    std::ptrdiff_t offset;
    std::memcpy(&offset, &pointer, sizeof offset);
    return offset;
}

template <class T, class D> Field MakeField() noexcept;

template <class T, template <class...> class L, class... D>
std::array<Field, sizeof...(D)> MakeFields(L<D...>*) noexcept {
    return {{MakeField<T, D>()...}};
}

} // namespace detail

template <class T> const Schema& SchemaOf() noexcept {
    static_assert(std::is_base_of_v<Core::AllocatableObject, T>, "records live in core memory");
    using Members = boost::describe::describe_members<T, boost::describe::mod_public |
                                                             boost::describe::mod_inherited>;
    using List = Core::DynamicArray<Core::UniquePtr<T>>;
    static const auto fields = detail::MakeFields<T>(static_cast<Members*>(nullptr));
    static_assert(std::tuple_size<decltype(fields)>::value <= 64, "reader marks fields in 64 bits");
    static const Schema schema{
        fields.data(),
        fields.size(),
        []() -> void* { return new T(); },
        [](void* record) noexcept { delete static_cast<T*>(record); },
        [](void* member, void* record) noexcept {
            static_cast<Core::UniquePtr<T>*>(member)->reset(static_cast<T*>(record));
        },
        [](const void* member) noexcept -> const void* {
            return static_cast<const Core::UniquePtr<T>*>(member)->get();
        },
        [](void* to, void* from) noexcept {
            *static_cast<Core::UniquePtr<T>*>(to) =
                std::move(*static_cast<Core::UniquePtr<T>*>(from));
        },
        [](void* member, void* const* records, std::size_t count) {
            List list;
            try {
                list.reserve(count);
            } catch (...) {
                for (std::size_t i = 0; i < count; ++i) {
                    delete static_cast<T*>(records[i]);
                }
                throw;
            }
            for (std::size_t i = 0; i < count; ++i) {
                list.emplace_back(static_cast<T*>(records[i]));
            }
            *static_cast<List*>(member) = std::move(list);
        },
        [](void* to, void* from) noexcept {
            *static_cast<List*>(to) = std::move(*static_cast<List*>(from));
        },
        [](const void* list) noexcept { return static_cast<const List*>(list)->size(); },
        [](const void* list, std::size_t index) noexcept -> const void* {
            return (*static_cast<const List*>(list))[index].get();
        },
    };
    return schema;
}

namespace detail {

template <class T, class D> Field MakeField() noexcept {
    using Member =
        std::remove_cv_t<std::remove_reference_t<decltype(std::declval<T&>().*D::pointer)>>;
    using Element = typename ElementOf<Member>::type;
    const Schema& (*nested)() noexcept = nullptr;
    if constexpr (!std::is_void_v<Element>) {
        nested = &SchemaOf<Element>;
    }
    return Field{D::name,
                 WordsOf(D::name),
                 {KeyText<D>::text.data(), KeyText<D>::text.size()},
                 KindOf<Member>::value,
                 OffsetOf<T, Member>(D::pointer),
                 nested};
}

} // namespace detail

// The reading routine that a record's constructor from a text runs. On a record already read it
// replaces what the text has data for and keeps the rest.
template <class T> void FromJson(T& record, const Core::TevString& json) noexcept {
    ReadRecord(&record, SchemaOf<T>(), json);
}

// What a record's ToJson() returns.
template <class T> Core::TevString WriteJson(const T& record) noexcept {
    return WriteRecord(&record, SchemaOf<T>());
}

} // namespace vanto::protocol

// States a record's base and its members, in order, inside the class body. Boost.Describe's
// macro passes empty variadic arguments, an extension in C++17 that clang -Wpedantic reports.
#if defined(__clang__)
#define VANTO_JSON_FIELDS(Class, Bases, Members)                                                   \
    _Pragma("clang diagnostic push")                                                               \
        _Pragma("clang diagnostic ignored \"-Wgnu-zero-variadic-macro-arguments\"")                \
            BOOST_DESCRIBE_CLASS(Class, Bases, Members, (), ()) _Pragma("clang diagnostic pop")
#else
#define VANTO_JSON_FIELDS(Class, Bases, Members) BOOST_DESCRIBE_CLASS(Class, Bases, Members, (), ())
#endif

// The operations a record offers.
// A record read from the connector: default construction, then construction from a JSON text.
#define VANTO_JSON_READER(Class)                                                                   \
    Class() = default;                                                                             \
    explicit Class(const Core::TevString& json) {                                                  \
        ::vanto::protocol::FromJson(*this, json);                                                  \
    }
// A record written to the connector (or logged).
#define VANTO_JSON_WRITER(Class)                                                                   \
    Core::TevString ToJson() const {                                                               \
        return ::vanto::protocol::WriteJson(*this);                                                \
    }
