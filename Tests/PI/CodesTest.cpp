#include "Support/SourceTree.h"

#include <PI/CaptionId.h>
#include <PI/EventCode.h>
#include <PI/Object.h>
#include <PI/PluginHelper.h>
#include <PI/StateCode.h>
#include <TLX/LanguageSupport.h>
#include <TLX/ModuleInfo.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace {

using TLX::Language_Support::CLanguageSupport;

/** The plug-in's catalogue says what each number means. */
TEST(Codes, AreNamedAsTheCatalogueNamesThem)
{
    CLanguageSupport::SetFolder(TestSupport::sourceTree("Ostrel/Data"));
    const CLanguageSupport::CLngFile file{"Ostrel.nls", 0x656E, "UTF-8", 1, {}};
    const TLX::Misc::CModuleInfo module{313, "Codes", "1", file, {}};
    const std::vector<std::pair<std::uint32_t, const char*>> codes = {
        {PI::HEALTH_HEALTHY, "Healthy"},
        {PI::HEALTH_CRITICAL, "Critical"},
        {PI::HEALTH_DEGRADED, "Degraded"},
        {PI::DRIVE_OPERATIONAL, "Operational"},
        {PI::DRIVE_WARNING, "Warning"},
        {PI::DRIVE_TYPE_SSD, "SSD"},
        {PI::WEAR_OK, "OK"},
        {PI::WEAR_WARNING, "Warning"},
        {PI::WEAR_CRITICAL, "Critical"},
        {PI::SPARE_SUFFICIENT, "Sufficient"},
        {PI::SPARE_EXHAUSTED, "Exhausted"},
        {PI::KNOWN_FAMILY_YES, "Yes"},
        {PI::KNOWN_FAMILY_NO, "No"},
        {PI::REASON_MEMORY_BACKUP_FAILED, "Volatile memory backup failed"},
        {PI::REASON_READ_ONLY, "Media is read-only"},
        {PI::REASON_TEMPERATURE, "Temperature outside its limits"},
        {PI::REASON_SPARE_LOW, "Available spare below its threshold"},
        {PI::REASON_RELIABILITY_DEGRADED, "Reliability degraded"},
        {PI::EVENT_MEMORY_BACKUP_FAILED, "%1: the backup of the volatile memory has failed."},
        {PI::EVENT_TEMPERATURE_CRITICAL, "%1: the temperature has reached the critical level."},
        {PI::EVENT_TEMPERATURE_ABOVE_CRITICAL, "%1: the temperature is well above the critical level."},
        {PI::EVENT_TEMPERATURE_HIGH, "%1: the temperature is too high."},
        {PI::EVENT_TEMPERATURE_NEAR_CRITICAL, "%1: the temperature is close to the critical level."},
        {PI::EVENT_SPARE_LOW, "%1: the available spare is below its threshold."},
        {PI::EVENT_WARNINGS_CLEARED, "%1: all warnings have cleared."},
        {PI::EVENT_DRIVE_CHANGED, "%1: drive %2 has changed."},
        {PI::EVENT_RELIABILITY_DEGRADED, "%1: the reliability is degraded."},
        {PI::EVENT_ADAPTER_ADDED, "%1 was added."},
        {PI::EVENT_ADAPTER_REMOVED, "%1 was removed."},
        {static_cast<std::uint32_t>(PI::EVENT_SOURCE_HOST), "Host"},
        {PI::ICON_ADAPTER_HEALTHY, "adapter-healthy"},
        {PI::ICON_ADAPTER_CRITICAL, "adapter-critical"},
        {PI::ICON_ADAPTER_DEGRADED, "adapter-degraded"},
        {PI::ICON_DRIVE_CRITICAL, "drive-critical"},
        {PI::ICON_DRIVE_OPERATIONAL, "drive-operational"},
        {PI::ICON_DRIVE_WARNING, "drive-warning"},
        {PI::CAPTION_END_OF_LIFE, "Estimated end of life"},
        {PI::CAPTION_MEDIA_ERRORS, "Media and data integrity errors"},
        {PI::SHOWN_CAPTION_SPARE_STATE, "Spare state"},
        {PI::DRIVE_CAPTION_RESERVED_CAPACITY, "Reserved capacity"},
        {PI::PLUGIN_CAPTION_POLL_INTERVAL, "Poll interval"},
    };
    for (const auto& [code, text] : codes)
        EXPECT_EQ(PI::PropertyValueToString(code), text) << code;
    for (const std::uint32_t reason : PI::FORESEEN_REASONS)
        EXPECT_EQ(PI::PropertyValueToString(reason), "Other reason (" + std::to_string(reason) + ")");
}

} // namespace
