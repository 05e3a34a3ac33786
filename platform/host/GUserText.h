// Stand-in for the host's text class: wide text with a UTF-8 narrow form.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

class GUserText {
public:
    // Flags of BeginsWith.
    static constexpr int IgnoreCase = 1;

    GUserText() = default;
    GUserText(const wchar_t* text) : text_(text != nullptr ? text : L"") {}
    GUserText(std::wstring text) : text_(std::move(text)) {}
    GUserText(std::wstring_view text) : text_(text) {}
    // The narrow-text constructor: the narrow form is UTF-8.
    explicit GUserText(const char* narrow);
    explicit GUserText(std::string_view narrow);

    const wchar_t* c_str() const noexcept { return text_.c_str(); }
    const std::wstring& wstr() const noexcept { return text_; }
    std::size_t Length() const noexcept { return text_.size(); }
    bool IsEmpty() const noexcept { return text_.empty(); }

    // The narrow (UTF-8) form.
    std::string Narrow() const;

    int CompareNoCase(const GUserText& other) const noexcept;
    bool EqualsNoCase(const GUserText& other) const noexcept { return CompareNoCase(other) == 0; }
    // Prefix test; flags 0 compares exactly, IgnoreCase ignores letter case.
    bool BeginsWith(const GUserText& prefix, int flags) const noexcept;

    GUserText& operator+=(const GUserText& more) {
        text_ += more.text_;
        return *this;
    }
    friend GUserText operator+(GUserText a, const GUserText& b) {
        a += b;
        return a;
    }

    // The class's own ordering and equality compare code units exactly.
    friend bool operator<(const GUserText& a, const GUserText& b) noexcept {
        return a.text_ < b.text_;
    }
    friend bool operator==(const GUserText& a, const GUserText& b) noexcept {
        return a.text_ == b.text_;
    }
    friend bool operator!=(const GUserText& a, const GUserText& b) noexcept { return !(a == b); }

private:
    std::wstring text_;
};

// Map ordering that ignores letter case, for maps keyed by file name.
struct GUserTextLessNoCase {
    bool operator()(const GUserText& a, const GUserText& b) const noexcept {
        return a.CompareNoCase(b) < 0;
    }
};
