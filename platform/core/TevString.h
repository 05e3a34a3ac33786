// The connector SDK's narrow text. It always holds UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace Core {

class TevString {
public:
    TevString() = default;
    TevString(const char* text) : text_(text != nullptr ? text : "") {}
    TevString(std::string text) : text_(std::move(text)) {}
    TevString(std::string_view text) : text_(text) {}
    TevString(const char* text, std::size_t length) : text_(text, length) {}

    const char* c_str() const noexcept { return text_.c_str(); }
    const char* data() const noexcept { return text_.data(); }
    std::size_t Length() const noexcept { return text_.size(); }
    std::size_t size() const noexcept { return text_.size(); }
    bool IsEmpty() const noexcept { return text_.empty(); }
    bool empty() const noexcept { return text_.empty(); }

    const std::string& str() const& noexcept { return text_; }
    std::string& str() & noexcept { return text_; }
    std::string&& str() && noexcept { return std::move(text_); }
    operator std::string_view() const noexcept { return text_; }

    TevString& operator+=(std::string_view more) {
        text_ += more;
        return *this;
    }

    // The library's equality compares byte for byte.
    friend bool operator==(const TevString& a, const TevString& b) noexcept {
        return a.text_ == b.text_;
    }
    friend bool operator!=(const TevString& a, const TevString& b) noexcept { return !(a == b); }
    friend bool operator==(const TevString& a, const char* b) noexcept {
        return a.text_ == (b != nullptr ? b : "");
    }
    friend bool operator!=(const TevString& a, const char* b) noexcept { return !(a == b); }
    friend bool operator<(const TevString& a, const TevString& b) noexcept {
        return a.text_ < b.text_;
    }

private:
    std::string text_;
};

} // namespace Core
