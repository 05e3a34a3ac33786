// Stand-in for the host's file-name class.
#pragma once

#include "host/GUserText.h"

class GUserFileName {
public:
    GUserFileName() = default;
    GUserFileName(const GUserText& path) : path_(path) {}
    explicit GUserFileName(const char* narrow) : path_(narrow) {}

    const GUserText& Text() const noexcept { return path_; }
    bool Exists() const;
    // The extension without its dot; empty when the last path element has none.
    GUserText GetExtension() const;

private:
    GUserText path_;
};
