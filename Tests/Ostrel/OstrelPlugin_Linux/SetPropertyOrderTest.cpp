#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"

#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>
#include <TLX/WaitResult.h>

#include <gtest/gtest.h>

#include <functional>

#include <dlfcn.h>

namespace {

/** Called when a file replaces another. */
std::function<void()> g_AtRename;

} // namespace

// Replaces the C library's function for every library of this process.
extern "C" __attribute__((visibility("default"))) int rename(const char* from, const char* to) noexcept
{
    if (g_AtRename)
        g_AtRename();
    static const auto real = reinterpret_cast<int (*)(const char*, const char*)>(dlsym(RTLD_NEXT, "rename"));
    return real(from, to);
}

namespace {

using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

// The host that the worker calls may read the file at once.
TEST(SetPropertyOrder, WakesTheWorkerAfterTheFileIsWritten)
{
    const TestSupport::CTemporaryFolder folder;
    PI::CConfigFile::SetFolder(folder.Path().string());
    TestSupport::CPluginUnderTest api;
    ASSERT_EQ(api.m_PrivateEvent.Init(false, true), Taken);
    PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
    property.SetValue(60, 2, 255, 1);
    std::uint32_t atRename = 0;
    g_AtRename = [&] { atRename = api.m_PrivateEvent.Wait(0); };
    EXPECT_EQ(api.SetPluginProperty(api.m_Plugin, property), PI::ERR_SUCCESS);
    g_AtRename = nullptr;
    EXPECT_EQ(atRename, TimedOut);
    EXPECT_EQ(api.m_PrivateEvent.Wait(0), Taken);
}

} // namespace
