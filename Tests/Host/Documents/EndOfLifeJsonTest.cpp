#include "Documents/EndOfLifeJson.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Plugins/ObjectStore.h"
#include "Support/FakeDrives.h"

#include <TLXX/NvmeQuery.h>

#include <nlohmann/json.hpp>

namespace {

using namespace Host::Cli;
using Json = nlohmann::ordered_json;

EndOfLife endOfLife(EndOfLife::Limit limit)
{
    EndOfLife end;
    end.m_AdapterId = 0x10;
    end.m_Date = "2027-01-01";
    end.m_PowerOnHours = 8766;
    end.m_Limit = limit;
    return end;
}

TEST(EndOfLifeJson, HasEachFigureThatIsKnown)
{
    const HostTest::Catalogue catalogue;
    EndOfLife end = endOfLife(EndOfLife::Limit::Writing);
    EXPECT_EQ(endOfLifeJson(end), Json::parse(R"({"object": "0x0000000000000010", "date": "2027-01-01",
        "powerOnHours": 8766, "limit": "writing"})"));
    end.m_DataWritten = Amount{1186.5F, PI::UNIT_TIB};
    end.m_Rating = 2373;
    end.m_Endurance = 50;
    end.m_Wear = 40;
    EXPECT_EQ(endOfLifeJson(end), Json::parse(R"({"object": "0x0000000000000010", "date": "2027-01-01",
        "powerOnHours": 8766, "dataWritten": {"value": 1186.5, "unit": "TiB"}, "ratingTiB": 2373,
        "enduranceUsed": 50, "wear": 40, "limit": "writing"})"));
}

TEST(EndOfLifeJson, HasAWordForEachLimit)
{
    std::vector<std::string> words;
    for (const auto limit : {EndOfLife::Limit::None, EndOfLife::Limit::Beyond, EndOfLife::Limit::Writing,
                             EndOfLife::Limit::Wear, EndOfLife::Limit::Worn})
        words.push_back(endOfLifeJson(endOfLife(limit)).at("limit"));
    EXPECT_THAT(words, testing::ElementsAre("none", "beyond", "writing", "wear", "worn"));
}

/** Twins have one serial number; only the device tells them apart. */
HostTest::DriveObjects twin(TestSupport::CFakeDrives& drives, std::uint32_t number)
{
    TestSupport::CFakeDrive drive(number);
    drive.Serial("TWIN");
    drive.m_Health.Counter128 = {100 + number, 0};
    drives.Add(drive);
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(drive.m_DeviceName, log);
    return {16 + 2 * number, "TWIN", drive.m_DeviceName};
}

TEST(EndOfLifeJson, ListsTheAdaptersThatShowADate)
{
    TestSupport::CFakeDrives drives;
    std::vector<HostTest::DriveObjects> objects;
    for (std::uint32_t number = 0; number < 3; ++number)
        objects.push_back(twin(drives, number));
    for (const std::size_t dated : {0, 1})
        objects[dated].m_Adapter.m_Properties.push_back(
            HostTest::property(PI::PROP_END_OF_LIFE_DATE, 1, "2030-01-01"));
    const Host::ObjectStore store(HostTest::topologyOf(objects));
    std::vector<const PI::CObject*> all;
    for (const PI::CObject& object : store.objects())
        all.push_back(&object);
    const Json list = endOfLifeJson(store, all);
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list.at(0).at("powerOnHours"), 100);
    EXPECT_EQ(list.at(1).at("powerOnHours"), 101);
    EXPECT_EQ(endOfLifeJson(store, {}).dump(), "[]");
}

} // namespace
