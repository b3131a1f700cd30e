#include "ScriptedKernel.h"
#include "SysfsTree.h"

#include <TLXX/ConfigManager.h>
#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <thread>

namespace {

constexpr int ROUNDS = 100;

/** Runs all functions at the same time, each `ROUNDS` times. */
void together(const std::vector<std::function<void()>>& functions)
{
    std::vector<std::jthread> threads;
    threads.reserve(functions.size());
    for (const auto& function : functions) {
        threads.emplace_back([&function] {
            for (int i = 0; i < ROUNDS; ++i)
                function();
        });
    }
}

TEST(ConcurrencyTest, QueriesAndLookupsStandBesideAnEnumeration)
{
    const TLXXTest::CSysfsScope sysfs(TLXXTest::recordedSysfs("plain"));
    const TLXXTest::CScriptedKernel kernel;
    (void)TLXX::Linux::enumerateDevices();

    std::atomic<int> wrong = 0;
    const auto query = [&wrong](const std::string& path, int expected) {
        return [&wrong, path, expected] {
            TLXX::NVME_IDENTIFY_CONTROLLER controller{};
            const auto status = TLXX::NVMeStorageQueryPropertyIdentifyController(path, controller);
            const auto wanted = static_cast<std::uint32_t>(expected);
            if (status != wanted || TLXX::lastStatus(path, TLXX::EQuery::IdentifyController) != wanted)
                ++wrong;
        };
    };
    const auto lookUp = [&wrong] {
        TLXX::CPciLocation location;
        if (!TLXX::CConfigManager::GetLocation({}, 2, location.m_Segment, location.m_Bus, location.m_Device,
                                               location.m_Function) ||
            location.m_Segment != 0x10000)
            ++wrong;
    };
    const auto enumerate = [&wrong] {
        if (TLXX::Linux::enumerateDevices().size() != 3)
            ++wrong;
    };
    together({query("/dev/nvme0n1", ENOENT), query("/dev/nvme7n1", ENODEV), lookUp, enumerate});
    EXPECT_EQ(wrong, 0);
}

} // namespace
