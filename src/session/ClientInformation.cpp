#include "session/ClientInformation.h"

#include "host/GUserText.h"
#include "host/HostUtil.h"
#include "os/Os.h"

#include <cstdio>
#include <string>

namespace vanto {

Core::TevString FormatProcessStartTime(const platform::os::LocalDateTime& time) {
    // Digits, "-", "T" and ":" only, so the narrow text is the same in every code page.
    char text[80];
    std::snprintf(text, sizeof text, "%d-%d-%dT%02d:%02d:%02d", time.year, time.month, time.day,
                  time.hour, time.minute, time.second);
    return Core::TevString(text);
}

ClientInformation BuildClientInformation() {
    ClientInformation info;
    info.processId = platform::os::CurrentProcessId();
    if (const auto started = platform::os::ProcessStartLocalTime()) {
        info.processStartTime = FormatProcessStartTime(*started);
    }
    GUserText productPath;
    GetHostProductPath(0, productPath);
    if (!productPath.IsEmpty()) {
        info.productPath = productPath.Narrow();
    }
    info.fullName = "Arbo Lite V" + std::to_string(GetHostMajorVersion());
    info.product = "ArboLite";
    return info;
}

} // namespace vanto
