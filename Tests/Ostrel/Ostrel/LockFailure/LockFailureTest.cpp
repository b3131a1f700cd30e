#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/TraceCapture.h"

#include <PI/ErrorCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <ostream>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/eventfd.h>

/** Seen by the libraries of the process before the system's function of that name. */
#define INTERPOSED __attribute__((visibility("default")))

namespace {

// How many calls still succeed before one fails; negative: all do. Constant-initialised, for the calls come
// from other libraries' constructors too.
constinit int g_MutexesLeft = -1;
constinit int g_EventsLeft = -1;

bool isTheFailingOne(int& left)
{
    return left >= 0 && left-- == 0;
}

template<typename Function>
Function systemFunction(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

struct CCase
{
    const char* m_Name;
    int m_Mutexes;
    int m_Events;
};

void PrintTo(const CCase& each, std::ostream* stream)
{
    *stream << each.m_Name;
}

class LockFailure : public testing::TestWithParam<CCase>
{
public:
    ~LockFailure() override
    {
        g_MutexesLeft = -1;
        g_EventsLeft = -1;
    }
};

} // namespace

extern "C" INTERPOSED int pthread_mutex_init(pthread_mutex_t* mutex,
                                             const pthread_mutexattr_t* attributes) noexcept
{
    if (isTheFailingOne(g_MutexesLeft))
        return ENOMEM;
    static const auto function =
        systemFunction<int (*)(pthread_mutex_t*, const pthread_mutexattr_t*)>("pthread_mutex_init");
    return function(mutex, attributes);
}

extern "C" INTERPOSED int eventfd(unsigned int count, int flags) noexcept
{
    if (isTheFailingOne(g_EventsLeft)) {
        errno = EMFILE;
        return -1;
    }
    static const auto function = systemFunction<int (*)(unsigned int, int)>("eventfd");
    return function(count, flags);
}

TEST_P(LockFailure, EndsInitializeBeforeTheDrivesAreLookedFor)
{
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0));
    TestSupport::CPluginUnderTest plugin;
    PI::CRequestData data = std::vector<PI::CAdapterID>(2);
    const TestSupport::CTraceCapture capture(~0U);
    g_MutexesLeft = GetParam().m_Mutexes;
    g_EventsLeft = GetParam().m_Events;

    testing::internal::CaptureStdout();
    const std::uint32_t result = plugin.Request(PI::REQUEST_INITIALIZE, 0, data);
    const std::string console = testing::internal::GetCapturedStdout();

    EXPECT_EQ(result, PI::ERR_LOCK_INITIALIZATION_FAILED);
    EXPECT_TRUE(std::get<std::vector<PI::CAdapterID>>(data).empty());
    EXPECT_EQ(console, "");
    EXPECT_THAT(drives.Queries(), testing::IsEmpty());
    const std::string function = "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::Initialize";
    EXPECT_THAT(capture.Lines(),
                testing::ElementsAre(
                    TestSupport::CCapturedLine{2, "Ostrel/Src/Ostrel", function, "ENTER Initialize()"},
                    TestSupport::CCapturedLine{2, "Ostrel/Src/Ostrel", function,
                                               std::string("LEAVE Initialize() ") + GetParam().m_Name +
                                                   ".Init() -> PI::ERR_LOCK_INITIALIZATION_FAILED 131"}));
}

INSTANTIATE_TEST_SUITE_P(Each, LockFailure,
                         testing::Values(CCase{"m_DataLock", 0, -1}, CCase{"m_PrivateEventsLock", 1, -1},
                                         CCase{"m_ForceWorker", -1, 0}, CCase{"m_StopRequest", -1, 1},
                                         CCase{"m_PrivateEvent", -1, 2}),
                         [](const auto& each) { return std::string(each.param.m_Name); });
