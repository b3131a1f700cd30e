#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include <windows.h>

namespace {

/** A built file beside the test program. */
class VersionResource : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        char program[MAX_PATH] = {};
        ASSERT_GT(GetModuleFileNameA(nullptr, program, MAX_PATH), 0U);
        std::string file(program);
        file.replace(file.find_last_of("\\/") + 1, std::string::npos, GetParam());
        m_Resource.resize(GetFileVersionInfoSizeA(file.c_str(), nullptr));
        ASSERT_FALSE(m_Resource.empty()) << file;
        ASSERT_TRUE(
            GetFileVersionInfoA(file.c_str(), 0, static_cast<DWORD>(m_Resource.size()), m_Resource.data()));
    }

    std::string Text(const std::string& name) const
    {
        void* text = nullptr;
        UINT length = 0;
        const std::string path = "\\StringFileInfo\\040904B0\\" + name;
        if (VerQueryValueA(m_Resource.data(), path.c_str(), &text, &length) == FALSE)
            return "none";
        return static_cast<const char*>(text);
    }

    std::vector<std::uint8_t> m_Resource;
};

TEST_P(VersionResource, TellsMakerVersionAndName)
{
    void* found = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(m_Resource.data(), "\\", &found, &length));
    ASSERT_EQ(length, sizeof(VS_FIXEDFILEINFO));
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(found);
    EXPECT_EQ(fixed.dwFileVersionMS, MAKELONG(16, 7));
    EXPECT_EQ(fixed.dwFileVersionLS, MAKELONG(0, 3));
    EXPECT_EQ(fixed.dwProductVersionMS, fixed.dwFileVersionMS);
    EXPECT_EQ(fixed.dwProductVersionLS, fixed.dwFileVersionLS);
    const bool isProgram = GetParam().ends_with(".exe");
    EXPECT_EQ(fixed.dwFileType, static_cast<DWORD>(isProgram ? VFT_APP : VFT_DLL));
    EXPECT_EQ(fixed.dwFileFlags, 0U);

    EXPECT_EQ(Text("CompanyName"), "Ostrel");
    EXPECT_EQ(Text("ProductName"), "Ostrel");
    EXPECT_EQ(Text("FileVersion"), "7.16.3");
    EXPECT_EQ(Text("ProductVersion"), "7.16.3");
    EXPECT_EQ(Text("OriginalFilename"), GetParam());
    EXPECT_NE(Text("FileDescription"), "none");
}

INSTANTIATE_TEST_SUITE_P(EveryFile, VersionResource,
                         testing::Values("Ostrel.dll", "PI.dll", "TLX.dll", "TLXX.dll", "Database.dll",
                                         "ostrel.exe"));

} // namespace
