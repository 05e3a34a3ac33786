/// @file
/// The host's text class, GUserText, in which every text crosses the component's interfaces.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The host's text class: wide text with a UTF-8 narrow form. Every text of the interfaces, paths
/// included, is one.
class GUserText {
public:
    /// A flag of BeginsWith: ignore letter case.
    static constexpr int IgnoreCase = 1;

    /// Empty text.
    GUserText() = default;
    /// From wide text.
    /// @param text  The text; null gives empty text.
    GUserText(const wchar_t* text) : text_(text != nullptr ? text : L"") {}
    /// From wide text.
    /// @param text  The text.
    GUserText(std::wstring text) : text_(std::move(text)) {}
    /// From wide text.
    /// @param text  The text.
    GUserText(std::wstring_view text) : text_(text) {}
    /// From narrow text, which is UTF-8.
    /// @param narrow  The text, null-terminated.
    explicit GUserText(const char* narrow);
    /// From narrow text, which is UTF-8.
    /// @param narrow  The text.
    explicit GUserText(std::string_view narrow);

    /// The text, null-terminated.
    /// @return The wide characters, valid while the text is unchanged.
    const wchar_t* c_str() const noexcept { return text_.c_str(); }
    /// The text.
    /// @return The wide string.
    const std::wstring& wstr() const noexcept { return text_; }
    /// The length.
    /// @return The number of wide characters.
    std::size_t Length() const noexcept { return text_.size(); }
    /// Whether the text is empty.
    /// @return True when it has no characters.
    bool IsEmpty() const noexcept { return text_.empty(); }

    /// The narrow form.
    /// @return The text as UTF-8.
    std::string Narrow() const;

    /// Compares with another text, ignoring letter case.
    /// @param other  The other text.
    /// @return Negative, 0 or positive as this text orders before, with or after `other`.
    int CompareNoCase(const GUserText& other) const noexcept;
    /// Whether two texts are equal, ignoring letter case.
    /// @param other  The other text.
    /// @return True when they are equal but for letter case.
    bool EqualsNoCase(const GUserText& other) const noexcept { return CompareNoCase(other) == 0; }
    /// Whether the text begins with another.
    /// @param prefix  The beginning to test for.
    /// @param flags  0 compares exactly, IgnoreCase ignores letter case.
    /// @return True when the text begins with `prefix`.
    bool BeginsWith(const GUserText& prefix, int flags) const noexcept;

    /// Appends a text.
    /// @param more  The text to append.
    /// @return This text.
    GUserText& operator+=(const GUserText& more) {
        text_ += more.text_;
        return *this;
    }
    /// Joins two texts.
    /// @param a  The first text.
    /// @param b  The text that follows it.
    /// @return The two, one after the other.
    friend GUserText operator+(GUserText a, const GUserText& b) {
        a += b;
        return a;
    }

    /// The class's own ordering, which compares character codes exactly (letter case counts);
    /// the sets and most maps of the interfaces are ordered by it.
    /// @param a  One text.
    /// @param b  The other.
    /// @return True when `a` orders before `b`.
    friend bool operator<(const GUserText& a, const GUserText& b) noexcept {
        return a.text_ < b.text_;
    }
    /// Whether two texts are equal, letter case included.
    /// @param a  One text.
    /// @param b  The other.
    /// @return True when they are equal.
    friend bool operator==(const GUserText& a, const GUserText& b) noexcept {
        return a.text_ == b.text_;
    }
    /// Whether two texts differ, letter case included.
    /// @param a  One text.
    /// @param b  The other.
    /// @return True when they differ.
    friend bool operator!=(const GUserText& a, const GUserText& b) noexcept { return !(a == b); }

private:
    std::wstring text_;
};

/// The ordering of maps keyed by file name: ignores letter case, so paths that differ only in
/// case are one key.
struct GUserTextLessNoCase {
    /// Whether one text orders before another, ignoring letter case.
    /// @param a  One text.
    /// @param b  The other.
    /// @return True when `a` orders before `b`.
    bool operator()(const GUserText& a, const GUserText& b) const noexcept {
        return a.CompareNoCase(b) < 0;
    }
};
