#include "Documents/EndOfLifeJson.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"

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

TEST(EndOfLifeJson, ListsTheObjectsThatShowADate)
{
    using HostTest::property;
    PI::CObject adapter;
    adapter.m_ID = 0x10;
    adapter.m_Properties = {property(PI::PROP_END_OF_LIFE_DATE, 1, std::string("2027-01-01")),
                            property(PI::PROP_POWER_ON_HOURS, PI::UNIT_HOURS, std::uint64_t{8766})};
    const PI::CObject none;
    const Json list = endOfLifeJson(std::vector<const PI::CObject*>{&none, &adapter});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].at("object"), "0x0000000000000010");
    EXPECT_EQ(endOfLifeJson(std::vector<const PI::CObject*>{&none}).dump(), "[]");
}

} // namespace
