#include "Facts/Explanation.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"

namespace {

using namespace Host::Cli;
using HostTest::property;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t HEALTHY = 40024;
constexpr std::uint32_t DEGRADED = 40150;
constexpr std::uint32_t CRITICAL = 40095;

PI::CObject objectWith(std::uint32_t health, std::vector<PI::CProperty> more)
{
    PI::CObject object;
    object.m_ID = 16;
    object.m_Properties = {property(PI::PROP_HEALTH_STATUS, 1, health, std::vector<std::uint32_t>{})};
    object.m_Properties.insert(object.m_Properties.end(), more.begin(), more.end());
    return object;
}

PI::CProperty code(std::uint32_t id, std::uint32_t value)
{
    return property(id, 1, value, std::vector<std::uint32_t>{});
}

PI::CProperty reasons(const std::vector<std::uint32_t>& codes)
{
    return property(PI::PROP_STATUS_REASONS, 1, codes, std::vector<std::uint32_t>{});
}

std::vector<std::uint32_t> explained(const PI::CObject& object)
{
    std::vector<std::uint32_t> codes;
    for (const ExplainedCode& each : explainedCodes(Host::ObjectStore({object}), object)) {
        codes.push_back(each.m_Code);
        EXPECT_NE(each.m_Property, nullptr);
    }
    return codes;
}

TEST(ExplainedCodes, AreEveryReasonThatADriveCanGive)
{
    EXPECT_THAT(explained(objectWith(CRITICAL, {reasons({40459, 40460, 40449, 40487, 40452})})),
                ElementsAre(40459, 40460, 40449, 40487, 40452));
}

TEST(ExplainedCodes, AreTheStatesOfSpareAndWear)
{
    EXPECT_THAT(
        explained(objectWith(HEALTHY, {code(PI::PROP_SPARE_STATE, 40473), code(PI::PROP_WEAR_STATE, 40252)})),
        ElementsAre(40473, 40252));
    for (const std::uint32_t bad : {40410U, 40411U})
        EXPECT_THAT(explained(objectWith(HEALTHY, {code(PI::PROP_WEAR_STATE, bad)})), ElementsAre(bad));
    EXPECT_THAT(explained(objectWith(HEALTHY, {code(PI::PROP_SPARE_STATE, 40474)})), ElementsAre(40474));
}

TEST(ExplainedCodes, NeverCalmDownAboutADriveInTrouble)
{
    EXPECT_THAT(explained(objectWith(CRITICAL, {code(PI::PROP_SPARE_STATE, 40473),
                                                code(PI::PROP_WEAR_STATE, 40252), reasons({40452})})),
                ElementsAre(40452));
}

TEST(ExplainedCodes, AreTheHealthItselfWhereNoReasonTellsMore)
{
    EXPECT_THAT(explained(objectWith(DEGRADED, {code(PI::PROP_WEAR_STATE, 40410)})),
                ElementsAre(DEGRADED, 40410));
    EXPECT_THAT(explained(objectWith(CRITICAL, {})), ElementsAre(CRITICAL));
    EXPECT_THAT(explained(objectWith(40180, {})), ElementsAre(40180));
    EXPECT_THAT(explained(objectWith(HEALTHY, {})), IsEmpty());
}

TEST(ExplainedCodes, AreNoneOfWhatNobodyKnows)
{
    EXPECT_THAT(explained(objectWith(HEALTHY, {reasons({40128, 1}), code(PI::PROP_MODEL_FAMILY, 40480)})),
                IsEmpty());
    EXPECT_THAT(explained(PI::CObject()), IsEmpty());
}

TEST(ExplainedCodes, SayWhenNobodyMeasuredAState)
{
    const HostTest::Catalogue catalogue;
    PI::CObject object =
        objectWith(HEALTHY, {code(PI::PROP_SPARE_STATE, 40473), code(PI::PROP_WEAR_STATE, 40252),
                             property(PI::PROP_VENDOR, 1, "SAMSUNG"),
                             property(PI::PROP_POWER_ON_HOURS, 1, std::uint64_t{1})});
    object.m_Type = PI::TYPE_ADAPTER;
    object.m_ID = 0x0139000000000001;
    const auto texts = [&] {
        std::vector<std::string> result;
        for (const ExplainedCode& each : explainedCodes(Host::ObjectStore({object}), object))
            result.push_back(each.m_Text + "|" + each.m_Meaning);
        return result;
    };
    using testing::StartsWith;
    EXPECT_THAT(texts(),
                ElementsAre(StartsWith("Sufficient (not measured)|This state is not measured; every"),
                            StartsWith("OK (not measured)|This state is not measured for drives of")));
    // Without its health log the state of the drive is unknown.
    std::erase_if(object.m_Properties,
                  [](const PI::CProperty& each) { return each.Id() == PI::PROP_POWER_ON_HOURS; });
    object.m_Properties.push_back(property(PI::PROP_AVAILABLE_SPARE, PI::UNIT_PERCENT, 100, 0, 100, 1));
    EXPECT_THAT(texts(), ElementsAre(StartsWith("Unknown|The health log of this drive was not read"),
                                     StartsWith("Sufficient (not"), StartsWith("OK (not")));
}

TEST(ExplainedCodes, SayThatTheLogWithTheWearWasNotRead)
{
    const HostTest::Catalogue catalogue;
    PI::CObject object =
        objectWith(HEALTHY, {code(PI::PROP_WEAR_STATE, 40252), property(PI::PROP_VENDOR, 1, "INTEL")});
    object.m_Type = PI::TYPE_ADAPTER;
    object.m_ID = 0x0139000000000001;
    const std::vector<ExplainedCode> codes = explainedCodes(Host::ObjectStore({object}), object);
    ASSERT_EQ(codes.size(), 1U);
    EXPECT_EQ(codes[0].m_Code, 40252U);
    EXPECT_EQ(codes[0].m_Text, "Unknown");
    EXPECT_EQ(std::string(codes[0].m_Meaning),
              "The log with the wear of this drive was not read, so its wear is not known.");
}

} // namespace
