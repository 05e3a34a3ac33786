// Tests of the mock services: each gets its own drive Z:, a fresh mock store and a manager made
// as a host makes it.
#pragma once

#include "mock/MockStore.h"
#include "support/ComTestSupport.h"
#include "support/DriveRoot.h"

#include <filesystem>
#include <string>

namespace testsupport {

class MockTest : public ::testing::Test {
protected:
    MockTest() {
        std::error_code ignored;
        std::filesystem::remove(ScopedDriveRoot::Native(vanto::mock::InputFilePath), ignored);
        vanto::mock::ResetMockStateForTesting();
    }
    ~MockTest() override { vanto::mock::ResetMockStateForTesting(); }

    void WriteInput(const std::string& xml) { drive.Write(vanto::mock::InputFilePath, xml); }

    // The store as the mock sees it: read on first use.
    static const vanto::mock::MockStore& Store() { return *vanto::mock::Store(); }

    ScopedDriveRoot drive;
    ManagerHandle manager;
    IVANTOSession* session = manager.MockSession();
    IVANTOFileServices* files = manager.MockFileServices();
};

} // namespace testsupport
