// Windows-only: platform/os against another system call that answers the same question.
#ifdef _WIN32

#include "com/ComBase.h"
#include "os/Os.h"

#include <gtest/gtest.h>

namespace {

TEST(OsWin32, ProcessIdIsTheOneTheSystemReports) {
    EXPECT_EQ(static_cast<std::uint32_t>(::GetCurrentProcessId()),
              platform::os::CurrentProcessId());
}

} // namespace

#endif
