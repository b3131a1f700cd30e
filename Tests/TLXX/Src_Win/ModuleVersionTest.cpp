#include <TLXX/System.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <windows.h>

namespace {

namespace fs = std::filesystem;

fs::path driverFolder()
{
    wchar_t folder[MAX_PATH] = {};
    EXPECT_GT(GetSystemDirectoryW(folder, MAX_PATH), 0U);
    return fs::path(folder) / L"drivers";
}

/** A file in the system's driver folder while it lives. */
class CDriver
{
public:
    CDriver(const char* name, const fs::path& original) : m_File(driverFolder() / name)
    {
        fs::copy_file(original, m_File, fs::copy_options::overwrite_existing);
    }
    ~CDriver() { fs::remove(m_File); }
    CDriver(const CDriver&) = delete;
    CDriver& operator=(const CDriver&) = delete;

private:
    fs::path m_File;
};

TEST(ModuleVersion, IsTheFileVersionOfTheDriver)
{
    const CDriver driver("ostreltest.sys", OSTREL_VERSIONED_FILE);
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("ostreltest"), "10.0.22621.65535");
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("OstrelTest"), "10.0.22621.65535");
}

TEST(ModuleVersion, OfAFileWithoutOneIsEmpty)
{
    const fs::path plain = fs::temp_directory_path() / "ostrel-plain.sys";
    std::ofstream(plain) << "no program at all";
    const CDriver driver("ostreltest.sys", plain);
    fs::remove(plain);
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("ostreltest"), "");
}

TEST(ModuleVersion, OfNoDriverIsEmpty)
{
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("ostrelmissing"), "");
}

TEST(ModuleVersion, NamesLeadNowhereElse)
{
    const CDriver driver("ostreltest.sys", OSTREL_VERSIONED_FILE);
    for (const std::string name : {"", ".", "..", "..\\drivers\\ostreltest", "../drivers/ostreltest",
                                   "ostreltest:x", "ostreltes?", "*"})
        EXPECT_EQ(TLXX::CSystem::GetModuleVersion(name), "") << name;
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion(std::string("ostreltest\0", 11)), "");
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion(std::string(5000, 'a')), "");
}

} // namespace
