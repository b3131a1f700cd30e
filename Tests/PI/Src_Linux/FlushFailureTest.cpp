#include "Support/TemporaryFolder.h"

#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <dlfcn.h>

namespace {

bool g_FlushFails = false;

} // namespace

// Replaces the C library's function for every library of this process.
extern "C" __attribute__((visibility("default"))) int fsync(int descriptor)
{
    if (g_FlushFails) {
        errno = EIO;
        return -1;
    }
    static const auto real = reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "fsync"));
    return real(descriptor);
}

namespace {

TEST(FlushFailure, LeavesTheFormerFileAndNothingBesideIt)
{
    const TestSupport::CTemporaryFolder folder;
    const auto path = folder.Write("Test.ini", "A=1\n");
    PI::CConfigFile::SetFolder(folder.Path().string());
    PI::CConfigFile config;
    config.SetFileName("Test.ini");
    g_FlushFails = true;
    EXPECT_EQ(config.WriteKeyValue("A", "2", -1, -1), PI::ERR_GENERAL_FAILURE);
    g_FlushFails = false;
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "A=1\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

} // namespace
