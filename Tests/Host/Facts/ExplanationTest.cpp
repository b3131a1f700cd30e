#include "Facts/Explanation.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"

#include <PI/StateCode.h>

namespace {

using namespace Host::Cli;
using HostTest::property;
using testing::ElementsAre;
using testing::IsEmpty;

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
    EXPECT_THAT(explained(objectWith(
                    PI::HEALTH_CRITICAL,
                    {reasons({PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW, PI::REASON_MEMORY_BACKUP_FAILED,
                              PI::REASON_RELIABILITY_DEGRADED, PI::REASON_READ_ONLY})})),
                ElementsAre(PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW, PI::REASON_MEMORY_BACKUP_FAILED,
                            PI::REASON_RELIABILITY_DEGRADED, PI::REASON_READ_ONLY));
}

TEST(ExplainedCodes, AreTheStatesOfSpareAndWear)
{
    EXPECT_THAT(explained(objectWith(PI::HEALTH_HEALTHY, {code(PI::PROP_SPARE_STATE, PI::SPARE_SUFFICIENT),
                                                          code(PI::PROP_WEAR_STATE, PI::WEAR_OK)})),
                ElementsAre(PI::SPARE_SUFFICIENT, PI::WEAR_OK));
    for (const std::uint32_t bad : {PI::WEAR_WARNING, PI::WEAR_CRITICAL})
        EXPECT_THAT(explained(objectWith(PI::HEALTH_HEALTHY, {code(PI::PROP_WEAR_STATE, bad)})),
                    ElementsAre(bad));
    EXPECT_THAT(explained(objectWith(PI::HEALTH_HEALTHY, {code(PI::PROP_SPARE_STATE, PI::SPARE_EXHAUSTED)})),
                ElementsAre(PI::SPARE_EXHAUSTED));
}

TEST(ExplainedCodes, NeverCalmDownAboutADriveInTrouble)
{
    EXPECT_THAT(explained(objectWith(PI::HEALTH_CRITICAL, {code(PI::PROP_SPARE_STATE, PI::SPARE_SUFFICIENT),
                                                           code(PI::PROP_WEAR_STATE, PI::WEAR_OK),
                                                           reasons({PI::REASON_READ_ONLY})})),
                ElementsAre(PI::REASON_READ_ONLY));
}

TEST(ExplainedCodes, AreTheHealthItselfWhereNoReasonTellsMore)
{
    EXPECT_THAT(explained(objectWith(PI::HEALTH_DEGRADED, {code(PI::PROP_WEAR_STATE, PI::WEAR_WARNING)})),
                ElementsAre(PI::HEALTH_DEGRADED, PI::WEAR_WARNING));
    EXPECT_THAT(explained(objectWith(PI::HEALTH_CRITICAL, {})), ElementsAre(PI::HEALTH_CRITICAL));
    EXPECT_THAT(explained(objectWith(PI::DRIVE_WARNING, {})), ElementsAre(PI::DRIVE_WARNING));
    EXPECT_THAT(explained(objectWith(PI::HEALTH_HEALTHY, {})), IsEmpty());
}

TEST(ExplainedCodes, AreNoneOfWhatNobodyKnows)
{
    EXPECT_THAT(
        explained(objectWith(PI::HEALTH_HEALTHY, {reasons({PI::FORESEEN_REASONS[0], 1}),
                                                  code(PI::PROP_MODEL_FAMILY, PI::KNOWN_FAMILY_YES)})),
        IsEmpty());
    EXPECT_THAT(explained(PI::CObject()), IsEmpty());
}

TEST(ExplainedCodes, SayWhenNobodyMeasuredAState)
{
    const HostTest::Catalogue catalogue;
    PI::CObject object = objectWith(
        PI::HEALTH_HEALTHY,
        {code(PI::PROP_SPARE_STATE, PI::SPARE_SUFFICIENT), code(PI::PROP_WEAR_STATE, PI::WEAR_OK),
         property(PI::PROP_VENDOR, 1, "SAMSUNG"), property(PI::PROP_POWER_ON_HOURS, 1, std::uint64_t{1})});
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
    PI::CObject object = objectWith(
        PI::HEALTH_HEALTHY, {code(PI::PROP_WEAR_STATE, PI::WEAR_OK), property(PI::PROP_VENDOR, 1, "INTEL")});
    object.m_Type = PI::TYPE_ADAPTER;
    object.m_ID = 0x0139000000000001;
    const std::vector<ExplainedCode> codes = explainedCodes(Host::ObjectStore({object}), object);
    ASSERT_EQ(codes.size(), 1U);
    EXPECT_EQ(codes[0].m_Code, PI::WEAR_OK);
    EXPECT_EQ(codes[0].m_Text, "Unknown");
    EXPECT_EQ(std::string(codes[0].m_Meaning),
              "The log with the wear of this drive was not read, so its wear is not known.");
}

} // namespace
