#include "host/GUserText.h"

#include "os/Os.h"
#include "os/TextConversion.h"

GUserText::GUserText(const char* narrow)
    : text_(platform::os::Utf8ToWide(narrow != nullptr ? std::string_view(narrow)
                                                       : std::string_view())) {}

GUserText::GUserText(std::string_view narrow) : text_(platform::os::Utf8ToWide(narrow)) {}

std::string GUserText::Narrow() const {
    return platform::os::WideToUtf8(text_);
}

int GUserText::CompareNoCase(const GUserText& other) const noexcept {
    return platform::os::CompareNoCase(text_.c_str(), other.text_.c_str());
}

bool GUserText::BeginsWith(const GUserText& prefix, int flags) const noexcept {
    if (prefix.text_.size() > text_.size()) {
        return false;
    }
    const std::wstring head = text_.substr(0, prefix.text_.size());
    if ((flags & IgnoreCase) != 0) {
        return platform::os::CompareNoCase(head.c_str(), prefix.text_.c_str()) == 0;
    }
    return head == prefix.text_;
}
