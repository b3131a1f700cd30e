#include <TLXX/ConfigManager.h>
#include <TLXX/DeviceBackend.h>
#include <TLXX/Diagnosis.h>
#include <TLXX/NvmeQuery.h>
#include <TLXX/System.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace {

using testing::_;
using testing::Return;

class CBackend : public TLXX::IDeviceBackend
{
public:
    MOCK_METHOD(std::vector<TLXX::CDeviceEntry>, Enumerate, (const TLXX::DeviceWalk&), (override));
    MOCK_METHOD(std::uint32_t, IdentifyController, (const std::string&, TLXX::NVME_IDENTIFY_CONTROLLER&),
                (override));
    MOCK_METHOD(std::uint32_t, IdentifyNamespace, (const std::string&, TLXX::NVME_IDENTIFY_NAMESPACE&),
                (override));
    MOCK_METHOD(std::uint32_t, SmartHealthLog, (const std::string&, TLXX::NVME_SMART_HEALTH_INFORMATION_LOG&),
                (override));
    MOCK_METHOD(std::uint32_t, VendorLogPage, (const std::string&, std::uint8_t, TLXX::VendorLogPage&),
                (override));
    MOCK_METHOD(std::optional<TLXX::CPciLocation>, Location, (std::uint32_t), (override));
    MOCK_METHOD(std::string, ModuleVersion, (const std::string&), (override));
};

class DeviceBackendTest : public testing::Test
{
protected:
    DeviceBackendTest() { TLXX::setDeviceBackend(m_Backend); }
    ~DeviceBackendTest() override { TLXX::setDeviceBackend(nullptr); }

    std::shared_ptr<testing::StrictMock<CBackend>> m_Backend =
        std::make_shared<testing::StrictMock<CBackend>>();
};

TEST(DeviceBackendRegistryTest, NothingStandsInTheMachinesPlaceAtFirst)
{
    EXPECT_EQ(TLXX::deviceBackend(), nullptr);
}

TEST(DeviceBackendRegistryTest, HandsBackTheFormerBackend)
{
    const auto first = std::make_shared<CBackend>();
    const auto second = std::make_shared<CBackend>();
    EXPECT_EQ(TLXX::setDeviceBackend(first), nullptr);
    EXPECT_EQ(TLXX::deviceBackend(), first);
    EXPECT_EQ(TLXX::setDeviceBackend(second), first);
    EXPECT_EQ(TLXX::setDeviceBackend(nullptr), second);
    EXPECT_EQ(TLXX::deviceBackend(), nullptr);
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(second.use_count(), 1);
}

TEST(DeviceBackendRegistryTest, MayChangeWhileItIsAsked)
{
    const auto backend = std::make_shared<testing::NiceMock<CBackend>>();
    ON_CALL(*backend, ModuleVersion(_)).WillByDefault(Return("7"));
    TLXX::setDeviceBackend(backend);
    {
        const std::jthread changing([&] {
            for (int i = 0; i < 1000; ++i)
                TLXX::setDeviceBackend(backend);
        });
        for (int i = 0; i < 1000; ++i)
            EXPECT_EQ(TLXX::CSystem::GetModuleVersion("driver"), "7");
    }
    TLXX::setDeviceBackend(nullptr);
}

TEST_F(DeviceBackendTest, AnswersIdentifyController)
{
    EXPECT_CALL(*m_Backend, IdentifyController("a", _))
        .WillOnce([](const std::string&, TLXX::NVME_IDENTIFY_CONTROLLER& block) {
            block.VID = 0x1344;
            return 0;
        });
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyController("a", controller), 0U);
    EXPECT_EQ(controller.VID, 0x1344);
}

TEST_F(DeviceBackendTest, AnswersIdentifyNamespace)
{
    EXPECT_CALL(*m_Backend, IdentifyNamespace("a", _))
        .WillOnce([](const std::string&, TLXX::NVME_IDENTIFY_NAMESPACE& block) {
            block.NSZE = 42;
            return 0;
        });
    TLXX::NVME_IDENTIFY_NAMESPACE name_space{};
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyNamespace("a", name_space), 0U);
    EXPECT_EQ(name_space.NSZE, 42U);
}

TEST_F(DeviceBackendTest, AnswersTheHealthLog)
{
    EXPECT_CALL(*m_Backend, SmartHealthLog("a", _))
        .WillOnce([](const std::string&, TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& block) {
            block.AvailableSpare = 99;
            return 0;
        });
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("a", log), 0U);
    EXPECT_EQ(log.AvailableSpare, 99);
}

TEST_F(DeviceBackendTest, AnswersVendorLogs)
{
    EXPECT_CALL(*m_Backend, VendorLogPage("a", 0xDD, _))
        .WillOnce([](const std::string&, std::uint8_t, TLXX::VendorLogPage& block) {
            block[511] = 5;
            return 0;
        });
    TLXX::VendorLogPage page{};
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage("a", 0xDD, page), 0U);
    EXPECT_EQ(page[511], 5);
}

TEST_F(DeviceBackendTest, TheLastStatusIsKeptPerPath)
{
    EXPECT_CALL(*m_Backend, IdentifyController("status a", _)).WillOnce(Return(13)).WillOnce(Return(0));
    EXPECT_CALL(*m_Backend, IdentifyController("status b", _)).WillOnce(Return(0x10109));
    const auto last = [](const char* path) {
        return TLXX::lastStatus(path, TLXX::EQuery::IdentifyController);
    };
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyController("status a", controller), 13U);
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyController("status b", controller), 0x10109U);
    EXPECT_EQ(last("status a"), 13U);
    EXPECT_EQ(last("status b"), 0x10109U);
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyController("status a", controller), 0U);
    EXPECT_EQ(last("status a"), 0U);
}

TEST_F(DeviceBackendTest, TheLastStatusIsKeptPerKindOfQuery)
{
    EXPECT_CALL(*m_Backend, IdentifyController("kinds", _)).WillOnce(Return(1));
    EXPECT_CALL(*m_Backend, IdentifyNamespace("kinds", _)).WillOnce(Return(2));
    EXPECT_CALL(*m_Backend, SmartHealthLog("kinds", _)).WillOnce(Return(3));
    EXPECT_CALL(*m_Backend, VendorLogPage("kinds", 0xCA, _)).WillOnce(Return(4));
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    TLXX::NVME_IDENTIFY_NAMESPACE name_space{};
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    TLXX::VendorLogPage page{};
    (void)TLXX::NVMeStorageQueryPropertyIdentifyController("kinds", controller);
    (void)TLXX::NVMeStorageQueryPropertyIdentifyNamespace("kinds", name_space);
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("kinds", log);
    (void)TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage("kinds", 0xCA, page);
    EXPECT_EQ(TLXX::lastStatus("kinds", TLXX::EQuery::IdentifyController), 1U);
    EXPECT_EQ(TLXX::lastStatus("kinds", TLXX::EQuery::IdentifyNamespace), 2U);
    EXPECT_EQ(TLXX::lastStatus("kinds", TLXX::EQuery::SmartHealthLog), 3U);
    EXPECT_EQ(TLXX::lastStatus("kinds", TLXX::EQuery::VendorLog), 4U);
}

TEST_F(DeviceBackendTest, AQueryThatWasNeverMadeHasNoLastStatus)
{
    EXPECT_EQ(TLXX::lastStatus("never asked", TLXX::EQuery::SmartHealthLog), std::nullopt);
    EXPECT_CALL(*m_Backend, IdentifyController("half asked", _)).WillOnce(Return(0));
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyController("half asked", controller), 0U);
    EXPECT_EQ(TLXX::lastStatus("half asked", TLXX::EQuery::IdentifyController), 0U);
    EXPECT_EQ(TLXX::lastStatus("half asked", TLXX::EQuery::SmartHealthLog), std::nullopt);
}

TEST_F(DeviceBackendTest, AnswersLocations)
{
    EXPECT_CALL(*m_Backend, Location(3)).WillOnce(Return(TLXX::CPciLocation{1, 2, 3, 4}));
    EXPECT_CALL(*m_Backend, Location(4)).WillOnce(Return(std::nullopt));
    std::int32_t segment = 0;
    std::int32_t bus = 0;
    std::int32_t device = 0;
    std::int32_t function = 0;
    EXPECT_TRUE(TLXX::CConfigManager::GetLocation({}, 3, segment, bus, device, function));
    EXPECT_FALSE(TLXX::CConfigManager::GetLocation({}, 4, segment, bus, device, function));
    EXPECT_EQ((TLXX::CPciLocation{segment, bus, device, function}), (TLXX::CPciLocation{1, 2, 3, 4}));
}

TEST_F(DeviceBackendTest, AnswersModuleVersions)
{
    EXPECT_CALL(*m_Backend, ModuleVersion("nvme")).WillOnce(Return("9.9"));
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("nvme"), "9.9");
}

TEST_F(DeviceBackendTest, GetsThePluginsWalkAndMayUseIt)
{
    int walks = 0;
    const auto walk = [&] {
        ++walks;
        return std::vector<TLXX::CDeviceEntry>{{"first", "one"}, {"second", "two"}};
    };
    EXPECT_CALL(*m_Backend, Enumerate(_)).WillOnce([](const TLXX::DeviceWalk& given) {
        auto entries = given();
        entries.erase(entries.begin());
        return entries;
    });
    const auto entries = TLXX::enumerateBackend(walk);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].m_DeviceName, "second");
    EXPECT_EQ(walks, 1);
}

TEST_F(DeviceBackendTest, MayLeaveTheWalkAlone)
{
    EXPECT_CALL(*m_Backend, Enumerate(_)).WillOnce(Return(std::vector<TLXX::CDeviceEntry>{{"own", "one"}}));
    const auto entries = TLXX::enumerateBackend([]() -> std::vector<TLXX::CDeviceEntry> {
        ADD_FAILURE() << "nobody asked for the walk";
        return {};
    });
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].m_DeviceName, "own");
}

TEST(DeviceBackendRegistryTest, WithoutABackendTheWalkCounts)
{
    const auto entries = TLXX::enumerateBackend([] {
        return std::vector<TLXX::CDeviceEntry>{{"machine", "nvme"}};
    });
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].m_DeviceName, "machine");
}

TEST_F(DeviceBackendTest, MaySayItselfWhichControllersThereAre)
{
    class CStates : public testing::StrictMock<CBackend>
    {
    public:
        std::vector<TLXX::CControllerState> ControllerStates() override
        {
            TLXX::CControllerState state;
            state.m_Name = "nvme7";
            return {state};
        }
    };
    TLXX::setDeviceBackend(std::make_shared<CStates>());
    const auto states = TLXX::controllerStates();
    ASSERT_EQ(states.size(), 1U);
    EXPECT_EQ(states[0].m_Name, "nvme7");
}

TEST_F(DeviceBackendTest, ItsDisksAreTheControllersThatADiagnosisShows)
{
    EXPECT_CALL(*m_Backend, Enumerate(_))
        .WillOnce(Return(std::vector<TLXX::CDeviceEntry>{{"first", "one"}, {"second", "two"}}));
    EXPECT_CALL(*m_Backend, Location(1)).WillOnce(Return(TLXX::CPciLocation{0, 7, 0, 0}));
    EXPECT_CALL(*m_Backend, Location(2)).WillOnce(Return(std::nullopt));
    const auto states = TLXX::controllerStates();
    ASSERT_EQ(states.size(), 2U);
    EXPECT_EQ(states[0].m_DeviceName, "first");
    EXPECT_EQ(states[0].m_Driver, "one");
    EXPECT_EQ(states[0].m_Transport, "pcie");
    EXPECT_EQ(states[0].m_Location, (TLXX::CPciLocation{0, 7, 0, 0}));
    EXPECT_EQ(states[0].m_AccessStatus, 0U);
    EXPECT_EQ(states[1].m_DeviceName, "second");
    EXPECT_EQ(states[1].m_Transport, "");
}

} // namespace
