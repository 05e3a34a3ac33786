// The module's version resource as the file's properties and a host's diagnostics read it, without
// loading the module: the project's version in the fixed part and in the strings.
#include "support/WindowsModule.h"

#include <winver.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

class ModuleVersion : public ::testing::Test {
protected:
    void SetUp() override {
        const std::wstring module = testsupport::ModuleNextToProgram();
        DWORD ignored = 0;
        const DWORD size = ::GetFileVersionInfoSizeW(module.c_str(), &ignored);
        ASSERT_NE(0u, size) << "no version resource, error " << ::GetLastError();
        data_.resize(size);
        ASSERT_TRUE(::GetFileVersionInfoW(module.c_str(), 0, size, data_.data()));
    }

    const void* Value(const std::wstring& name, UINT* length) {
        void* value = nullptr;
        *length = 0;
        return ::VerQueryValueW(data_.data(), name.c_str(), &value, length) ? value : nullptr;
    }

    // A string of the first language the resource lists.
    std::wstring Text(const wchar_t* name) {
        UINT length = 0;
        const auto* language =
            static_cast<const WORD*>(Value(L"\\VarFileInfo\\Translation", &length));
        if (language == nullptr || length < 2 * sizeof(WORD)) {
            return L"(no translation)";
        }
        wchar_t block[32];
        swprintf(block, 32, L"\\StringFileInfo\\%04x%04x\\", language[0], language[1]);
        const auto* text = static_cast<const wchar_t*>(Value(block + std::wstring(name), &length));
        return text != nullptr ? std::wstring(text) : L"(missing)";
    }

private:
    std::vector<unsigned char> data_;
};

TEST_F(ModuleVersion, FixedPartHoldsTheProjectVersionOfADll) {
    UINT length = 0;
    const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(Value(L"\\", &length));
    ASSERT_NE(nullptr, fixed);
    ASSERT_GE(length, sizeof(VS_FIXEDFILEINFO));
    EXPECT_EQ(0xFEEF04BDu, fixed->dwSignature);
    const DWORD high = (VANTO_VERSION_MAJOR << 16) | VANTO_VERSION_MINOR;
    const DWORD low = static_cast<DWORD>(VANTO_VERSION_PATCH) << 16;
    EXPECT_EQ(high, fixed->dwFileVersionMS);
    EXPECT_EQ(low, fixed->dwFileVersionLS);
    EXPECT_EQ(high, fixed->dwProductVersionMS);
    EXPECT_EQ(low, fixed->dwProductVersionLS);
    EXPECT_EQ(static_cast<DWORD>(VFT_DLL), fixed->dwFileType);
}

TEST_F(ModuleVersion, StringsNameTheProjectVersionAndTheFile) {
    EXPECT_EQ(std::wstring(L"" VANTO_VERSION), Text(L"FileVersion"));
    EXPECT_EQ(std::wstring(L"" VANTO_VERSION), Text(L"ProductVersion"));
    EXPECT_EQ(std::wstring(testsupport::ModuleFile), Text(L"OriginalFilename"));
}

} // namespace
