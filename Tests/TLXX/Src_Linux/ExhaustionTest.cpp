#include "SysfsTree.h"

#include <TLX/Linux/Descriptor.h>
#include <TLXX/Diagnosis.h>
#include <TLXX/Linux/Sysfs.h>
#include <TLXX/NvmeQuery.h>
#include <TLXX/System.h>

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

/** Limits the number of further descriptors of the process until destruction. */
class CDescriptorLimit
{
public:
    explicit CDescriptorLimit(rlim_t further)
    {
        getrlimit(RLIMIT_NOFILE, &m_Former);
        const int lowestFree = TLX::Linux::CDescriptor(open("/dev/null", O_RDONLY | O_CLOEXEC)).Get();
        rlimit limit = m_Former;
        limit.rlim_cur = static_cast<rlim_t>(lowestFree) + further;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~CDescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_Former); }
    CDescriptorLimit(const CDescriptorLimit&) = delete;
    CDescriptorLimit& operator=(const CDescriptorLimit&) = delete;

private:
    rlimit m_Former = {};
};

/** The names of the disks; none when the enumeration throws. */
std::optional<std::vector<std::string>> disks(rlim_t descriptors)
{
    const CDescriptorLimit limit(descriptors);
    try {
        std::vector<std::string> names;
        for (const TLXX::CDeviceEntry& entry : TLXX::Linux::enumerateDevices())
            names.push_back(entry.m_DeviceName);
        return names;
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

TEST(ExhaustionTest, NoDiskPassesForMissingWhenDescriptorsRunOut)
{
    const TLXXTest::CSysfsScope scope(TLXXTest::recordedSysfs("plain"));
    const std::vector<std::string> all = {"/dev/nvme0n1", "/dev/nvme2n2", "/dev/nvme10n4"};
    EXPECT_EQ(disks(0), std::nullopt);
    rlim_t descriptors = 0;
    while (!disks(descriptors) && descriptors < 100)
        ++descriptors;
    for (rlim_t more = descriptors; more < descriptors + 3; ++more)
        EXPECT_EQ(disks(more), all) << more;
}

TEST(ExhaustionTest, NothingPassesForUnknownWhenDescriptorsRunOut)
{
    const TLXXTest::CSysfsScope scope(TLXXTest::recordedSysfs("plain"));
    const CDescriptorLimit limit(0);
    EXPECT_THROW(TLXX::controllerStates(), std::runtime_error);
    EXPECT_THROW(TLXX::CSystem::GetModuleVersion("nvme"), std::runtime_error);
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    EXPECT_THROW(TLXX::NVMeStorageQueryPropertyIdentifyController("/dev/nvme0n1", controller),
                 std::runtime_error);
}

} // namespace
