#include "Support/FakeDrives.h"

#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

using TestSupport::CFakeDrive;

constexpr std::uint8_t LOGS[] = {0xC5, 0xCA, 0xDD};
constexpr std::uint32_t REFUSED = 5;
constexpr std::uint32_t NO_SUCH_LOG = 0x10109;
constexpr std::uint32_t EMPTY_PAGE = 0x20002;

/** Two drives that have answered every query once. Each page names its drive and its kind. */
class PageMemoryTest : public testing::Test
{
protected:
    PageMemoryTest()
    {
        for (std::uint8_t number = 0; number < 2; ++number) {
            CFakeDrive drive(number);
            drive.m_Namespace.NSZE = 100U + number;
            drive.m_Health.AvailableSpare = static_cast<std::uint8_t>(10 + number);
            for (const std::uint8_t log : LOGS)
                drive.m_VendorLogs[log][511] = static_cast<std::uint8_t>(log + number);
            m_Drives.Add(drive);
        }
        (void)TLXX::enumerateBackend({});
        for (const std::string& path : {FIRST, SECOND}) {
            EXPECT_EQ(Identify(path), 0U);
            (void)Blocks(path);
            (void)Spare(path);
            for (const std::uint8_t log : LOGS)
                (void)LogByte(path, log);
        }
    }

    static std::uint32_t Identify(const std::string& path)
    {
        TLXX::NVME_IDENTIFY_CONTROLLER controller{};
        return TLXX::NVMeStorageQueryPropertyIdentifyController(path, controller);
    }

    std::uint64_t Blocks(const std::string& path)
    {
        TLXX::NVME_IDENTIFY_NAMESPACE block{};
        m_Status = TLXX::NVMeStorageQueryPropertyIdentifyNamespace(path, block);
        return block.NSZE;
    }

    int Spare(const std::string& path)
    {
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG block{};
        m_Status = TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(path, block);
        return block.AvailableSpare;
    }

    int LogByte(const std::string& path, std::uint8_t log)
    {
        TLXX::VendorLogPage block{};
        m_Status = TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage(path, log, block);
        return block[511];
    }

    /** From now on every query of the drive fails except Identify Controller. */
    void Silence(std::size_t index)
    {
        m_Drives.Change(index, [](CFakeDrive& drive) {
            drive.m_NamespaceStatuses.assign(9, REFUSED);
            drive.m_HealthStatuses.assign(9, REFUSED);
            drive.m_VendorLogs.clear();
        });
    }

    const std::string FIRST = "/dev/nvme0n1";
    const std::string SECOND = "/dev/nvme1n1";
    TestSupport::CFakeDrives m_Drives;
    std::uint32_t m_Status = 0;
};

TEST_F(PageMemoryTest, GivesEachPageOfADriveThatFails)
{
    for (std::size_t index = 0; index < 2; ++index) {
        Silence(index);
        const int number = static_cast<int>(index);
        const std::string path = index == 0 ? FIRST : SECOND;
        EXPECT_EQ(Blocks(path), 100U + index);
        EXPECT_EQ(m_Status, REFUSED);
        EXPECT_EQ(Spare(path), 10 + number);
        EXPECT_EQ(m_Status, REFUSED);
        EXPECT_EQ(TLXX::lastStatus(path, TLXX::EQuery::SmartHealthLog), REFUSED);
        EXPECT_EQ(LogByte(path, 0xC5), 0xC5 + number);
        EXPECT_EQ(LogByte(path, 0xCA), 0xCA + number);
        EXPECT_EQ(m_Status, NO_SUCH_LOG);
    }
}

TEST_F(PageMemoryTest, KeepsNoMarketingPage)
{
    EXPECT_EQ(LogByte(FIRST, 0xDD), 0xDD);
    Silence(0);
    EXPECT_EQ(LogByte(FIRST, 0xDD), 0);
    EXPECT_EQ(m_Status, NO_SUCH_LOG);
}

TEST_F(PageMemoryTest, KeepsTheLastPageAndNotTheFirst)
{
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_Health.AvailableSpare = 7; });
    EXPECT_EQ(Spare(FIRST), 7);
    Silence(0);
    EXPECT_EQ(Spare(FIRST), 7);
}

TEST_F(PageMemoryTest, LeavesTheBlockOfADriveThatNeverAnswered)
{
    m_Drives.Add(CFakeDrive(2));
    Silence(2);
    EXPECT_EQ(Identify("/dev/nvme2n1"), 0U);
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    log.Warning = 0xEE;
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme2n1", log), REFUSED);
    EXPECT_EQ(log.Warning, 0xEE);
}

TEST_F(PageMemoryTest, TakesAHealthLogOfZerosForAFailedQuery)
{
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_Health = {}; });
    EXPECT_EQ(Spare(FIRST), 10);
    EXPECT_EQ(m_Status, EMPTY_PAGE);
    EXPECT_EQ(TLXX::lastStatus(FIRST, TLXX::EQuery::SmartHealthLog), EMPTY_PAGE);
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_Health.Reserved232.back() = 1; });
    EXPECT_EQ(Spare(FIRST), 0) << "one byte makes it a page";
    EXPECT_EQ(m_Status, 0U);
}

TEST_F(PageMemoryTest, ForgetsADriveThatShowsAnotherSerialNumber)
{
    Silence(0);
    Silence(1);
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.Serial("OTHER"); });
    EXPECT_EQ(Identify(FIRST), 0U);
    EXPECT_EQ(Identify(SECOND), 0U);
    EXPECT_EQ(Spare(FIRST), 0);
    EXPECT_EQ(Blocks(FIRST), 0U);
    EXPECT_EQ(LogByte(FIRST, 0xC5), 0);
    EXPECT_EQ(Spare(SECOND), 11) << "the same number as before";
}

TEST_F(PageMemoryTest, KeepsADriveThatFailsToIdentifyItself)
{
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_ControllerStatuses = {REFUSED}; });
    Silence(0);
    EXPECT_EQ(Identify(FIRST), REFUSED);
    EXPECT_EQ(Spare(FIRST), 10);
    EXPECT_EQ(TLXX::lastIdentifyController(FIRST)->sSerialNumber(), "SN0");
}

TEST_F(PageMemoryTest, ForgetsADriveThatAnEnumerationNoLongerFinds)
{
    const CFakeDrive first = m_Drives.At(0);
    m_Drives.Remove(FIRST);
    (void)TLXX::enumerateBackend({});
    m_Drives.Add(first);
    Silence(0);
    Silence(1);
    EXPECT_EQ(Spare(FIRST), 0);
    EXPECT_EQ(Spare(SECOND), 11);
    EXPECT_EQ(TLXX::lastHealthLog(FIRST), nullptr);
    EXPECT_EQ(TLXX::lastIdentifyController(FIRST), nullptr);
}

TEST_F(PageMemoryTest, KeepsNothingOfDrivesThatNoInstanceTellsApart)
{
    for (std::size_t index = 0; index < 2; ++index)
        m_Drives.Change(index, [](CFakeDrive& drive) { drive.m_Instance = ""; });
    EXPECT_EQ(Spare(FIRST), 10);
    Silence(1);
    EXPECT_EQ(Spare(SECOND), 0) << "the first drive's page is not the second one's";
}

TEST_F(PageMemoryTest, BelongsToTheBackendOfItsTime)
{
    {
        TestSupport::CFakeDrives others;
        others.Add(CFakeDrive(0)).m_HealthStatuses = {REFUSED};
        EXPECT_EQ(Spare(FIRST), 0);
    }
    Silence(0);
    EXPECT_EQ(Spare(FIRST), 0) << "what comes back may have changed meanwhile";
}

TEST_F(PageMemoryTest, TellsTheLastGoodPagesOfEachDeviceAndAsksNoDrive)
{
    Silence(1);
    (void)Spare(SECOND);
    m_Drives.Change(1, [](CFakeDrive& drive) { drive.m_ControllerStatuses = {REFUSED}; });
    EXPECT_EQ(Identify(SECOND), REFUSED);
    const std::size_t asked = m_Drives.Queries().size();
    EXPECT_EQ(TLXX::lastHealthLog(FIRST)->AvailableSpare, 10);
    EXPECT_EQ(TLXX::lastHealthLog(SECOND)->AvailableSpare, 11);
    EXPECT_EQ(TLXX::lastIdentifyController(FIRST)->sSerialNumber(), "SN0");
    EXPECT_EQ(TLXX::lastIdentifyController(SECOND)->sSerialNumber(), "SN1");
    EXPECT_EQ(TLXX::lastHealthLog("/dev/nvme2n1"), nullptr);
    for (const std::uint8_t log : {std::uint8_t{0xC5}, std::uint8_t{0xCA}}) {
        EXPECT_EQ(TLXX::lastVendorLog(FIRST, log)->back(), log);
        EXPECT_EQ(TLXX::lastVendorLog(SECOND, log)->back(), log + 1);
        EXPECT_EQ(TLXX::lastVendorLog("/dev/nvme2n1", log), nullptr);
    }
    EXPECT_EQ(TLXX::lastVendorLog(FIRST, 0xDD), nullptr);
    EXPECT_EQ(m_Drives.Queries().size(), asked);
}

TEST_F(PageMemoryTest, APageThatWasToldNeverChanges)
{
    const auto before = TLXX::lastHealthLog(FIRST);
    (void)Spare(FIRST);
    EXPECT_EQ(TLXX::lastHealthLog(FIRST), before) << "the drive told the same, so all share one page";
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_Health.AvailableSpare = 9; });
    (void)Spare(FIRST);
    EXPECT_EQ(before->AvailableSpare, 10);
    EXPECT_EQ(TLXX::lastHealthLog(FIRST)->AvailableSpare, 9);
    m_Drives.Remove(FIRST);
    (void)TLXX::enumerateBackend({});
    EXPECT_EQ(before->AvailableSpare, 10) << "whoever has a page keeps it";
}

TEST_F(PageMemoryTest, TellsDrivesOfOneSerialNumberApart)
{
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.Serial("SN1"); });
    EXPECT_EQ(Identify(FIRST), 0U);
    EXPECT_EQ(TLXX::lastHealthLog(FIRST), nullptr) << "it is another drive now";
    (void)Spare(FIRST);
    EXPECT_EQ(TLXX::lastHealthLog(FIRST)->AvailableSpare, 10);
    EXPECT_EQ(TLXX::lastHealthLog(SECOND)->AvailableSpare, 11);
}

TEST_F(PageMemoryTest, MayBeUsedByManyThreads)
{
    Silence(0);
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            for (int round = 0; round < 200; ++round) {
                TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
                (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(FIRST, log);
                (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(SECOND, log);
                EXPECT_EQ(log.AvailableSpare, 11);
                (void)Identify(SECOND);
                (void)TLXX::enumerateBackend({});
                EXPECT_TRUE(TLXX::lastHealthLog(SECOND));
            }
        });
    }
}

} // namespace
