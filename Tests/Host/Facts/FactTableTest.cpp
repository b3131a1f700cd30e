#include "Facts/FactTable.h"

#include "Host/Writable.h"

#include <PI/StateCode.h>

#include <gmock/gmock.h>

#include <cstring>
#include <limits>
#include <regex>
#include <set>

namespace {

using namespace Host::Cli;
using Log = TLXX::NVME_SMART_HEALTH_INFORMATION_LOG;
using Controller = TLXX::NVME_IDENTIFY_CONTROLLER;
using testing::VariantWith;

constexpr std::uint64_t ALL_ONES = std::numeric_limits<std::uint64_t>::max();

FactValue valueOf(const char* key, const Drive& drive)
{
    EXPECT_STREQ(factOf(key).m_Key, key);
    return factOf(key).m_Value(drive);
}

template<typename Page>
void put(std::shared_ptr<const Page>& page, std::size_t offset, std::uint64_t number, std::size_t size)
{
    std::memcpy(reinterpret_cast<std::uint8_t*>(&writable(page)) + offset, &number, size);
}

/** A drive with both pages. They are all zeros except for the total capacity. */
Drive withPages()
{
    Drive drive;
    (void)writable(drive.m_HealthLog);
    writable(drive.m_Identify).TNVMCAP = {1, 0};
    return drive;
}

TEST(FactTable, HasEachKeyOnceAndInTheFormOfAMember)
{
    std::set<std::string> keys;
    for (const Fact& fact : facts()) {
        EXPECT_TRUE(keys.insert(fact.m_Key).second) << fact.m_Key;
        EXPECT_TRUE(std::regex_match(fact.m_Key, std::regex("[a-z][A-Za-z]*[0-9]?"))) << fact.m_Key;
        EXPECT_STRNE(fact.m_Caption, "") << fact.m_Key;
    }
}

TEST(FactTable, EveryFactIsOfTheKindThatItsRowNames)
{
    Drive drive = withPages();
    drive.m_Serial = "S";
    drive.m_Wear = 3;
    drive.m_DataRead = Amount{1, PI::UNIT_MIB};
    drive.m_Health = Health{PI::HEALTH_HEALTHY, "Healthy"};
    drive.m_Reasons = {{1, "reason"}};
    writable(drive.m_Identify).VER = 0x10400;
    drive.m_System.emplace();
    drive.m_System->m_Link.m_Speed = 8.0F;
    std::size_t known = 0;
    for (const Fact& fact : facts())
        if (const FactValue value = fact.m_Value(drive); value.index() != 0) {
            EXPECT_EQ(value.index(), fact.m_Kind) << fact.m_Key;
            ++known;
        }
    EXPECT_GT(known, 20U);
}

TEST(FactTable, NothingIsKnownOfADriveThatToldNothing)
{
    for (const Fact& fact : facts())
        EXPECT_THAT(fact.m_Value(Drive()), VariantWith<std::monostate>(testing::_)) << fact.m_Key;
}

TEST(FactTable, EachFieldOfAPageIsReadAtThePlaceThatItsRowNames)
{
    constexpr std::uint64_t number = 0x2B; // as a byte, as kelvin, as a version, as a counter
    std::size_t fields = 0;
    for (const Fact& fact : facts()) {
        Drive drive = withPages();
        const FactValue before = fact.m_Value(drive);
        if (fact.m_Source.m_Origin == FactOrigin::HealthLog)
            put(drive.m_HealthLog, fact.m_Source.m_Place, number, 1);
        else if (fact.m_Source.m_Origin == FactOrigin::Identify)
            put(drive.m_Identify, fact.m_Source.m_Place, number, 1);
        else
            continue;
        ++fields;
        EXPECT_NE(fact.m_Value(drive).index(), 0U) << fact.m_Key;
        const FactValue after = fact.m_Value(drive);
        const bool changed =
            before.index() != after.index() ||
            (after.index() == factKind<std::uint64_t>() && std::get<std::uint64_t>(after) == number &&
             std::get<std::uint64_t>(before) != number) ||
            (after.index() == factKind<std::int32_t>() &&
             std::get<std::int32_t>(after) == static_cast<std::int32_t>(number));
        EXPECT_TRUE(changed) << fact.m_Key;
    }
    EXPECT_EQ(fields, 27U);
}

TEST(FactTable, CountersAreExactOrNotKnown)
{
    for (const char* key : {"powerCycles", "unsafeShutdowns", "errorLogEntries", "hostReadCommands",
                            "hostWriteCommands", "controllerBusyMinutes"}) {
        const std::size_t place = factOf(key).m_Source.m_Place;
        Drive drive = withPages();
        EXPECT_THAT(valueOf(key, drive), VariantWith<std::uint64_t>(0)) << key;
        put(drive.m_HealthLog, place, ALL_ONES - 1, 8);
        EXPECT_THAT(valueOf(key, drive), VariantWith<std::uint64_t>(ALL_ONES - 1)) << key;
        put(drive.m_HealthLog, place, ALL_ONES, 8);
        EXPECT_EQ(valueOf(key, drive).index(), 0U) << key;
        put(drive.m_HealthLog, place, 5, 8);
        put(drive.m_HealthLog, place + 8, 1, 8);
        EXPECT_EQ(valueOf(key, drive).index(), 0U) << "no 64 bits hold it: " << key;
    }
    for (const char* key : {"warningTemperatureMinutes", "criticalTemperatureMinutes", "thermalTransitions1",
                            "thermalTransitions2", "thermalSeconds1", "thermalSeconds2"}) {
        const std::size_t place = factOf(key).m_Source.m_Place;
        Drive drive = withPages();
        EXPECT_THAT(valueOf(key, drive), VariantWith<std::uint64_t>(0)) << key;
        put(drive.m_HealthLog, place, 0xFFFFFFFE, 4);
        EXPECT_THAT(valueOf(key, drive), VariantWith<std::uint64_t>(0xFFFFFFFE)) << key;
        put(drive.m_HealthLog, place, 0xFFFFFFFF, 4);
        EXPECT_EQ(valueOf(key, drive).index(), 0U) << key;
    }
}

TEST(FactTable, TemperaturesAreInCelsiusAndNoneAtZeroKelvin)
{
    for (const Fact& fact : facts()) {
        if (!isOwn(fact.m_Source.m_Origin) || std::string_view(fact.m_Unit) != "°C")
            continue;
        Drive drive = withPages();
        const auto at = [&](std::uint16_t kelvin) {
            put(drive.m_HealthLog, fact.m_Source.m_Place, kelvin, 2);
            put(drive.m_Identify, fact.m_Source.m_Place, kelvin, 2);
            return fact.m_Value(drive);
        };
        EXPECT_EQ(at(0).index(), 0U) << fact.m_Key;
        EXPECT_THAT(at(1), VariantWith<std::int32_t>(-272)) << fact.m_Key;
        EXPECT_THAT(at(343), VariantWith<std::int32_t>(70)) << fact.m_Key;
        EXPECT_THAT(at(0xFFFE), VariantWith<std::int32_t>(65261)) << fact.m_Key;
        EXPECT_EQ(at(0xFFFF).index(), 0U) << fact.m_Key;
    }
}

TEST(FactTable, TheLifeUsedMayPassAHundred)
{
    Drive drive = withPages();
    writable(drive.m_HealthLog).PercentageUsed = 255;
    EXPECT_THAT(valueOf("percentageUsed", drive), VariantWith<std::int32_t>(255));
}

TEST(FactTable, TheVersionHasATertiaryNumberWhereThatIsNotZero)
{
    const std::pair<std::uint32_t, const char*> versions[] = {
        {0x00010400, "1.4"}, {0x00010201, "1.2.1"}, {0x00020000, "2.0"}, {0xFFFFFFFE, "65535.255.254"}};
    Drive drive = withPages();
    for (const auto& [version, text] : versions) {
        writable(drive.m_Identify).VER = version;
        EXPECT_THAT(valueOf("nvmeVersion", drive), VariantWith<std::string>(text));
    }
    for (const std::uint32_t none : {0U, 0xFFFFFFFFU}) {
        writable(drive.m_Identify).VER = none;
        EXPECT_EQ(valueOf("nvmeVersion", drive).index(), 0U);
    }
}

TEST(FactTable, CapacitiesAreKnownOfDrivesThatReportTheTotal)
{
    Drive drive = withPages();
    writable(drive.m_Identify).TNVMCAP = {2'000'398'934'016, 0};
    EXPECT_THAT(valueOf("totalCapacityBytes", drive), VariantWith<std::uint64_t>(2'000'398'934'016U));
    EXPECT_THAT(valueOf("unallocatedCapacityBytes", drive), VariantWith<std::uint64_t>(0U));
    for (const auto& total : {std::array<std::uint64_t, 2>{0, 0}, {ALL_ONES, ALL_ONES}, {0, 1}}) {
        writable(drive.m_Identify).TNVMCAP = total;
        writable(drive.m_Identify).UNVMCAP = {7, 0};
        EXPECT_EQ(valueOf("totalCapacityBytes", drive).index(), 0U);
        EXPECT_EQ(valueOf("unallocatedCapacityBytes", drive).index(), 0U);
    }
    for (const std::uint32_t none : {0U, 0xFFFFFFFFU}) {
        writable(drive.m_Identify).NN = none;
        EXPECT_EQ(valueOf("namespaceLimit", drive).index(), 0U);
    }
}

TEST(FactTable, TheSystemTellsStateNamespacesAndLink)
{
    Drive drive;
    drive.m_System.emplace();
    drive.m_System->m_State = "live";
    drive.m_System->m_Namespaces = 3;
    drive.m_System->m_Link = {2.5F, 16.0F, 2, 4, 0};
    EXPECT_THAT(valueOf("controllerState", drive), VariantWith<std::string>("live"));
    EXPECT_THAT(valueOf("namespaces", drive), VariantWith<std::uint64_t>(3U));
    EXPECT_THAT(valueOf("linkSpeed", drive), VariantWith<float>(2.5F));
    EXPECT_THAT(valueOf("linkSpeedMaximum", drive), VariantWith<float>(16.0F));
    EXPECT_THAT(valueOf("linkLanes", drive), VariantWith<std::uint64_t>(2U));
    EXPECT_THAT(valueOf("linkLanesMaximum", drive), VariantWith<std::uint64_t>(4U));
    EXPECT_THAT(valueOf("numaNode", drive), VariantWith<std::uint64_t>(0U));
    drive.m_System->m_Link = {};
    for (const char* key : {"linkSpeed", "linkSpeedMaximum", "linkLanes", "linkLanesMaximum", "numaNode"})
        EXPECT_EQ(valueOf(key, drive).index(), 0U) << key;
}

} // namespace
