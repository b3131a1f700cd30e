#include "Records/Health.h"

#include <PI/StateCode.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using namespace NAMESPACE_Ostrel;

namespace {

std::uint32_t warningsAt(std::uint8_t byte0, std::uint8_t byte104)
{
    TLXX::VendorLogPage page{};
    page[0] = byte0;
    page[104] = byte104;
    return temperatureWarnings(page);
}

TEST(Health, TemperatureDifferenceAddsWarningBits)
{
    EXPECT_EQ(warningsAt(0, 0), 0U);
    EXPECT_EQ(warningsAt(97, 20), 0U);
    EXPECT_EQ(warningsAt(98, 20), 0x20U);
    EXPECT_EQ(warningsAt(99, 20), 0x20U);
    EXPECT_EQ(warningsAt(100, 20), 0x240U);
    EXPECT_EQ(warningsAt(103, 20), 0x240U);
    EXPECT_EQ(warningsAt(104, 20), 0x280U);
    EXPECT_EQ(warningsAt(255, 0), 0x280U);
}

TEST(Health, NegativeTemperatureDifferenceAddsNothing)
{
    EXPECT_EQ(warningsAt(20, 21), 0U);
    EXPECT_EQ(warningsAt(0, 255), 0U);
    EXPECT_EQ(warningsAt(0, 178), 0U);
}

struct CWarningCase
{
    std::uint8_t m_Warning;
    std::uint32_t m_Status;
    std::vector<std::uint32_t> m_Reasons;
};

TEST(Health, WarningBitsSetStatusAndReasonsTheLastTestedWins)
{
    const std::vector<CWarningCase> cases = {
        {0x00, PI::HEALTH_HEALTHY, {}},
        {0x01, PI::HEALTH_DEGRADED, {PI::REASON_SPARE_LOW}},
        {0x02, PI::HEALTH_DEGRADED, {PI::REASON_TEMPERATURE}},
        {0x04, PI::HEALTH_CRITICAL, {PI::REASON_RELIABILITY_DEGRADED}},
        {0x08, PI::HEALTH_CRITICAL, {PI::REASON_READ_ONLY}},
        {0x10, PI::HEALTH_CRITICAL, {PI::REASON_MEMORY_BACKUP_FAILED}},
        {0x03, PI::HEALTH_DEGRADED, {PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW}},
        {0x09, PI::HEALTH_CRITICAL, {PI::REASON_SPARE_LOW, PI::REASON_READ_ONLY}},
        {0x12, PI::HEALTH_CRITICAL, {PI::REASON_TEMPERATURE, PI::REASON_MEMORY_BACKUP_FAILED}},
        {0x1F,
         PI::HEALTH_CRITICAL,
         {PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW, PI::REASON_MEMORY_BACKUP_FAILED,
          PI::REASON_RELIABILITY_DEGRADED, PI::REASON_READ_ONLY}},
        {0xE0, PI::HEALTH_HEALTHY, {}}, // bits without a meaning here
    };
    for (const CWarningCase& expected : cases) {
        SCOPED_TRACE(int{expected.m_Warning});
        CNVMeAdapter adapter;
        adapter.m_WarningFlags = expected.m_Warning;
        applyCriticalWarning(adapter, expected.m_Warning);
        EXPECT_EQ(adapter.m_HealthStatus, expected.m_Status);
        EXPECT_EQ(adapter.m_HealthReasons, expected.m_Reasons);
    }
}

TEST(Health, TemperatureBitsAloneLeaveTheStatus)
{
    CNVMeAdapter adapter;
    adapter.m_WarningFlags = 0x280;
    adapter.m_HealthStatus = 12345;
    applyCriticalWarning(adapter, 0);
    EXPECT_EQ(adapter.m_HealthStatus, 12345U);
    EXPECT_TRUE(adapter.m_HealthReasons.empty());
}

TEST(Health, WithoutAnyWarningTheStatusIsHealthy)
{
    CNVMeAdapter adapter;
    adapter.m_HealthStatus = 12345;
    applyCriticalWarning(adapter, 0);
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_HEALTHY);
}

CNVMeAdapter worn(const std::string& model, std::uint8_t ad, std::uint8_t ea, std::uint8_t warning = 0)
{
    CNVMeAdapter adapter;
    adapter.m_Model = model;
    adapter.m_WarningFlags = warning;
    applyCriticalWarning(adapter, warning);
    applyWear(adapter, ad, ea, warning);
    return adapter;
}

TEST(Health, OneProductLineReportsItsWearInverted)
{
    EXPECT_EQ(worn("INTEL SSDPED1K375GA", 3, 100).m_ADNormalized, 97U);
    EXPECT_EQ(worn("INTEL SSDPED1KGA", 3, 100).m_ADNormalized, 97U);
    EXPECT_EQ(worn("INTEL SSDPED1K375GB", 3, 100).m_ADNormalized, 3U);
    EXPECT_EQ(worn("INTEL SSDPED1K375AG", 3, 100).m_ADNormalized, 3U);
    EXPECT_EQ(worn("INTEL SSDPE21K375GA", 3, 100).m_ADNormalized, 3U);
    EXPECT_EQ(worn("A", 3, 100).m_ADNormalized, 3U);
    EXPECT_EQ(worn("INTEL SSDPED1K375GA", 200, 100).m_ADNormalized, 0U) << "no wear below zero";
}

TEST(Health, SpareValueOfAHundredIsNormal)
{
    const CNVMeAdapter adapter = worn("Any", 90, 100);
    EXPECT_EQ(adapter.m_ADNormalized, 90U);
    EXPECT_EQ(adapter.m_EANormalized, 100U);
    EXPECT_EQ(adapter.m_SpareStatus, PI::WEAR_OK);
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_HEALTHY);
}

TEST(Health, SpareValueBelowAHundredDegrades)
{
    const CNVMeAdapter adapter = worn("Any", 90, 99);
    EXPECT_EQ(adapter.m_EANormalized, 99U);
    EXPECT_EQ(adapter.m_SpareStatus, PI::WEAR_WARNING);
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_DEGRADED);
    EXPECT_TRUE(adapter.m_HealthReasons.empty());
}

TEST(Health, SpareValueNeverSoftensACriticalStatus)
{
    const CNVMeAdapter backup = worn("Any", 90, 50, 0x10);
    EXPECT_EQ(backup.m_SpareStatus, PI::WEAR_WARNING);
    EXPECT_EQ(backup.m_HealthStatus, PI::HEALTH_CRITICAL);
    const CNVMeAdapter readOnly = worn("Any", 90, 50, 0x08);
    EXPECT_EQ(readOnly.m_SpareStatus, PI::WEAR_CRITICAL);
    EXPECT_EQ(readOnly.m_HealthStatus, PI::HEALTH_CRITICAL);
}

TEST(Health, SpareValueAboveAHundredIsCriticalWearOnly)
{
    const CNVMeAdapter adapter = worn("Any", 90, 101);
    EXPECT_EQ(adapter.m_SpareStatus, PI::WEAR_CRITICAL);
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_HEALTHY);
    EXPECT_EQ(worn("Any", 90, 100, 0x08).m_SpareStatus, PI::WEAR_OK);
}

} // namespace
