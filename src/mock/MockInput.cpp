#include "mock/MockInput.h"

#include <algorithm>

namespace vanto::mock {

namespace {

bool IsSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}
bool IsNameChar(char c) {
    return c != '\0' && !IsSpace(c) && c != '/' && c != '>' && c != '?';
}
bool IsAttributeNameChar(char c) {
    return IsNameChar(c) && c != '<' && c != '=' && c != '!';
}

// A flat walk over the reader's markup. Every rule below is the reader's own, and the walk stops
// where the reader would stop with an error, so it counts exactly the elements the reader opens.
class NestingScan {
public:
    explicit NestingScan(std::string_view xml) : text_(xml.substr(0, xml.find('\0'))) {}

    // The deepest element nesting the reader reaches before it ends or stops at a fault.
    std::size_t Deepest() {
        if (text_.substr(0, 3) == "\xEF\xBB\xBF") {
            pos_ = 3;
        }
        std::size_t depth = 0;
        std::size_t deepest = 0;
        for (;;) {
            if (depth == 0) {
                Skip(IsSpace);
                if (pos_ >= text_.size() || At(0) != '<') {
                    return deepest;
                }
            } else if (!SkipPast("<", false)) {
                return deepest;
            }
            ++pos_; // '<'
            const char next = At(0);
            bool fine = true;
            if (next == '/') {
                fine = depth > 0 && CloseTag();
                depth -= fine ? 1 : 0;
            } else if (next == '?') {
                // The reader looks for "?>" only after the '?' that opened: "<?>" is no end.
                ++pos_;
                fine = SkipPast("?>", true);
            } else if (next == '!') {
                fine = Declaration();
            } else {
                bool opened = false;
                fine = OpenTag(opened);
                if (opened) {
                    deepest = std::max(deepest, ++depth);
                }
            }
            if (!fine) {
                return deepest;
            }
        }
    }

private:
    char At(std::size_t offset) const {
        return pos_ + offset < text_.size() ? text_[pos_ + offset] : '\0';
    }
    void Skip(bool (*test)(char)) {
        while (test(At(0))) {
            ++pos_;
        }
    }
    // Moves to `token` (past it when `past`); false when the text ends first.
    bool SkipPast(std::string_view token, bool past) {
        const std::size_t found = text_.find(token, pos_);
        if (found == std::string_view::npos) {
            return false;
        }
        pos_ = found + (past ? token.size() : 0);
        return true;
    }
    bool CloseTag() {
        ++pos_; // '/'
        Skip(IsNameChar);
        Skip(IsSpace);
        if (At(0) != '>') {
            return false;
        }
        ++pos_;
        return true;
    }
    bool Declaration() {
        if (At(1) == '-' && At(2) == '-') {
            pos_ += 3;
            return SkipPast("-->", true);
        }
        if (text_.substr(pos_ + 1, 7) == "[CDATA[") {
            pos_ += 8;
            return SkipPast("]]>", true);
        }
        if (text_.substr(pos_ + 1, 7) == "DOCTYPE" && IsSpace(At(8))) {
            pos_ += 9;
            return Doctype();
        }
        ++pos_;
        return SkipPast(">", true);
    }
    bool Doctype() {
        while (At(0) != '>') {
            if (At(0) == '\0') {
                return false;
            }
            if (At(0) == '[') {
                ++pos_;
                for (std::size_t brackets = 1; brackets > 0; ++pos_) {
                    const char c = At(0);
                    if (c == '\0') {
                        return false;
                    }
                    brackets += c == '[' ? 1 : 0;
                    brackets -= c == ']' ? 1 : 0;
                }
            } else {
                ++pos_;
            }
        }
        ++pos_;
        return true;
    }
    bool OpenTag(bool& opened) {
        const std::size_t name = pos_;
        Skip(IsNameChar);
        if (pos_ == name) {
            return false;
        }
        Skip(IsSpace);
        while (IsAttributeNameChar(At(0))) {
            Skip(IsAttributeNameChar);
            Skip(IsSpace);
            if (At(0) != '=') {
                return false;
            }
            ++pos_;
            Skip(IsSpace);
            const char quote = At(0);
            if (quote != '"' && quote != '\'') {
                return false;
            }
            ++pos_;
            if (!SkipPast(std::string_view(&quote, 1), true)) {
                return false;
            }
            Skip(IsSpace);
        }
        if (At(0) == '>') {
            ++pos_;
            opened = true;
            return true;
        }
        if (At(0) == '/' && At(1) == '>') {
            pos_ += 2;
            return true;
        }
        return false;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
};

} // namespace

std::size_t DeepestNesting(std::string_view xml) {
    return NestingScan(xml).Deepest();
}

} // namespace vanto::mock
