// What the component tells the connector about the host process when it registers.
#pragma once

#include "core/TevString.h"
#include "os/ProcessInfo.h"

#include <cstdint>

namespace vanto {

struct ClientInformation {
    std::uint32_t processId = 0;
    Core::TevString processStartTime; // empty when the creation time cannot be read
    Core::TevString productPath;
    Core::TevString fullName;
    Core::TevString product;
};

// Built afresh for every registration.
ClientInformation BuildClientInformation();

// "2024-3-7T09:05:02": the date without leading zeros, the time in two digits each. Unconverted
// fields (-1) give "-1--1--1T-1:-1:-1".
Core::TevString FormatProcessStartTime(const platform::os::LocalDateTime& time);

} // namespace vanto
