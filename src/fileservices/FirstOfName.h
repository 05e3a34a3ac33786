// How an answer finds the caller's entry it is about: the caller's entries are indexed once by
// name, the first of each name kept, and each answer entry is then one hash look-up. The answers
// may come in any order and name files the caller does not hold; neither costs more than a
// look-up, so a walk stays linear in the caller's data and the answer.
#pragma once

#include <boost/container_hash/hash.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace vanto::fileservices {

// Names compared code unit by code unit, as the connector sends them back.
struct ExactName {
    using Text = std::string_view;
    static std::size_t Hash(Text name) noexcept { return boost::hash_value(name); }
    static bool Equal(Text a, Text b) noexcept { return a == b; }
};

// Names compared as GUserText::EqualsNoCase compares them: ASCII letters without their case, and
// only up to the first null character.
struct NameNoCase {
    using Text = std::wstring_view;
    // The folded characters are packed into words and each word mixed in: mixing every
    // character on its own made a chain of dependent steps as long as the name.
    static std::size_t Hash(Text name) noexcept {
        name = Visible(name);
        constexpr std::size_t Bits = 8 * sizeof(wchar_t);
        constexpr std::size_t PerWord = sizeof(std::uint64_t) / sizeof(wchar_t);
        std::uint64_t hash = name.size();
        for (std::size_t i = 0; i < name.size();) {
            std::uint64_t word = 0;
            for (std::size_t k = 0; k < PerWord && i < name.size(); ++k, ++i) {
                word |= std::uint64_t{static_cast<std::make_unsigned_t<wchar_t>>(Fold(name[i]))}
                        << (k * Bits);
            }
            hash = (hash ^ word) * 0x9E3779B97F4A7C15U; // 2^64 over the golden ratio
            hash ^= hash >> 32;
        }
        return static_cast<std::size_t>(hash);
    }
    static bool Equal(Text a, Text b) noexcept {
        a = Visible(a);
        b = Visible(b);
        if (a.size() != b.size()) {
            return false;
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (Fold(a[i]) != Fold(b[i])) {
                return false;
            }
        }
        return true;
    }

private:
    static Text Visible(Text name) noexcept { return name.substr(0, name.find(L'\0')); }
    static wchar_t Fold(wchar_t c) noexcept {
        return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
    }
};

// Name -> the first entry added under it. The names are views: what they look at must outlive
// the index.
template <class Names, class Entry> class FirstOfName {
public:
    using Text = typename Names::Text;

    explicit FirstOfName(std::size_t expected) { first_.reserve(expected); }

    // A later entry of a name already held is passed over.
    void Add(Text name, Entry entry) { first_.try_emplace(name, entry); }

    // The first entry named `name`, or null.
    const Entry* Find(Text name) const {
        const auto found = first_.find(name);
        return found != first_.end() ? &found->second : nullptr;
    }

private:
    struct Hash {
        std::size_t operator()(Text name) const noexcept { return Names::Hash(name); }
    };
    struct Equal {
        bool operator()(Text a, Text b) const noexcept { return Names::Equal(a, b); }
    };
    boost::unordered_flat_map<Text, Entry, Hash, Equal> first_;
};

} // namespace vanto::fileservices
