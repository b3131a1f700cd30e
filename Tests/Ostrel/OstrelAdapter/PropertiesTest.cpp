#include "Support/ExpectedProperty.h"
#include "Support/PluginUnderTest.h"
#include "Support/TraceCapture.h"
#include "Support/VirtualClock.h"

#include <PI/CaptionId.h>
#include <PI/StateCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

using namespace NAMESPACE_Ostrel;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using TestSupport::CCapturedLine;
using TestSupport::CExpectedProperty;

namespace {

constexpr std::uint32_t ALL_ONES = 0xFFFFFFFF;

/** Every row has a value to show. */
CNVMeAdapter adapterWithEverything()
{
    CNVMeAdapter adapter;
    adapter.m_Name = "NVMe Intel PCI Adapter (BTFU1)";
    adapter.m_Vendor = "INTEL";
    adapter.m_Model = "INTEL SSDPED1K375GA";
    adapter.m_GlobalAdapterNumber = 17;
    adapter.m_HealthStatus = PI::HEALTH_DEGRADED;
    adapter.m_Segment = 1;
    adapter.m_Bus = 2;
    adapter.m_Device = 3;
    adapter.m_Function = 4;
    adapter.m_Location = "PCI:Segment=1&Bus=2&Device=3&Function=4";
    adapter.m_SerialNumber = "BTFU1";
    adapter.m_FirmwareRevision = "E2010600";
    adapter.m_VendorTag = "TAG";
    adapter.m_DeviceName = "/dev/nvme0n1";
    adapter.m_Driver = "nvme";
    adapter.m_DriverVersion = "6.1.0";
    adapter.m_Temperature = 31.5F;
    adapter.m_PowerOnHours = 1234;
    adapter.m_ReserveSpace = 99;
    adapter.m_SpareState = PI::SPARE_EXHAUSTED;
    adapter.m_WarningThreshold = 12;
    adapter.m_DataUnitsRead = 3;            // 1536000 bytes
    adapter.m_DataUnitsWritten = 4'294'968; // just above 2 TiB
    adapter.m_LifetimeRating = 1;
    adapter.m_SpareStatus = PI::WEAR_WARNING;
    adapter.m_UnsafeShutdowns = 5;
    adapter.m_HealthReasons = {PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW};
    return adapter;
}

/** The whole list, written out by hand: id, caption, four attributes, kind and units, value, sub-type, icon.
 */
std::vector<CExpectedProperty> expectedOfFullAdapter()
{
    using Text = std::string;
    using Number = std::uint64_t;
    return {
        {{PI::PROP_NAME, PI::CAPTION_NAME, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("NVMe Intel PCI Adapter (BTFU1)")},
        {{PI::PROP_VENDOR, PI::CAPTION_VENDOR, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("INTEL")},
        {{PI::PROP_MODEL, PI::CAPTION_MODEL, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("SSDPED1K375GA")},
        {{PI::PROP_MODEL_FAMILY, PI::CAPTION_NONE, 1, 1, 0, PI::KIND_CODE, PI::UNIT_NONE, 1},
         PI::CCodeValue{PI::KNOWN_FAMILY_YES, {PI::KNOWN_FAMILY_YES, PI::KNOWN_FAMILY_NO}}},
        {{PI::PROP_ADAPTER_NUMBER, PI::SHOWN_CAPTION_ADAPTER_NUMBER, 1, 1, ALL_ONES, PI::KIND_NUMBER,
          PI::UNIT_NONE, 1},
         Number{17}},
        {{PI::PROP_HEALTH_STATUS, PI::CAPTION_HEALTH_STATUS, 1, 1, ALL_ONES, PI::KIND_CODE, PI::UNIT_NONE, 1},
         PI::CCodeValue{PI::HEALTH_DEGRADED, {PI::HEALTH_HEALTHY, PI::HEALTH_DEGRADED, PI::HEALTH_CRITICAL}},
         0,
         PI::ICON_ADAPTER_DEGRADED},
        {{PI::PROP_PCI_SEGMENT, PI::SHOWN_CAPTION_PCI_SEGMENT, 1, 1, ALL_ONES, PI::KIND_NUMBER, PI::UNIT_NONE,
          0},
         Number{1}},
        {{PI::PROP_PCI_BUS, PI::SHOWN_CAPTION_PCI_BUS, 1, 1, ALL_ONES, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
         Number{2}},
        {{PI::PROP_PCI_DEVICE, PI::SHOWN_CAPTION_PCI_DEVICE, 1, 1, ALL_ONES, PI::KIND_NUMBER, PI::UNIT_NONE,
          0},
         Number{3}},
        {{PI::PROP_PCI_FUNCTION, PI::SHOWN_CAPTION_PCI_FUNCTION, 1, 1, ALL_ONES, PI::KIND_NUMBER,
          PI::UNIT_NONE, 0},
         Number{4}},
        {{PI::PROP_LOCATION, PI::CAPTION_NONE, 1, 1, 0, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("PCI:Segment=1&Bus=2&Device=3&Function=4")},
        {{PI::PROP_SERIAL_NUMBER, PI::CAPTION_SERIAL_NUMBER, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("BTFU1")},
        {{PI::PROP_FIRMWARE, PI::CAPTION_FIRMWARE, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("E2010600")},
        {{PI::PROP_VENDOR_TAG, PI::CAPTION_VENDOR_TAG, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("TAG")},
        {{PI::PROP_DEVICE_NAME, PI::CAPTION_DEVICE_NAME, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("/dev/nvme0n1")},
        {{PI::PROP_DRIVER, PI::CAPTION_DRIVER, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE, 1},
         Text("nvme")},
        {{PI::PROP_DRIVER_VERSION, PI::CAPTION_DRIVER_VERSION, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE,
          1},
         Text("6.1.0")},
        {{PI::PROP_TEMPERATURE, PI::CAPTION_TEMPERATURE, 1, 1, ALL_ONES, PI::KIND_NUMBER, PI::UNIT_CELSIUS,
          0},
         31.5F,
         8},
        {{PI::PROP_END_OF_LIFE_DATE, PI::CAPTION_END_OF_LIFE, 1, 1, ALL_ONES, PI::KIND_TEXT, PI::UNIT_NONE,
          0},
         Text("2125-12-08")},
        {{PI::PROP_POWER_ON_HOURS, PI::CAPTION_POWER_ON_HOURS, 1, 1, ALL_ONES, PI::KIND_NUMBER,
          PI::UNIT_HOURS, 0},
         Number{1234}},
        {{PI::PROP_AVAILABLE_SPARE, PI::SHOWN_CAPTION_AVAILABLE_SPARE, 1, 1, ALL_ONES, PI::KIND_BOUNDED,
          PI::UNIT_PERCENT, 0},
         PI::CBoundedValue{99, 0, 100, 1}},
        {{PI::PROP_SPARE_STATE, PI::SHOWN_CAPTION_SPARE_STATE, 1, 1, ALL_ONES, PI::KIND_CODE, PI::UNIT_NONE,
          1},
         PI::CCodeValue{PI::SPARE_EXHAUSTED,
                        {PI::SPARE_SUFFICIENT, PI::HEALTH_DEGRADED, PI::SPARE_EXHAUSTED}}},
        {{PI::PROP_SPARE_THRESHOLD, PI::SHOWN_CAPTION_SPARE_THRESHOLD, 1, 1, ALL_ONES, PI::KIND_BOUNDED,
          PI::UNIT_PERCENT, 1},
         PI::CBoundedValue{12, 1, 100, 1}},
        {{PI::PROP_DATA_READ, PI::CAPTION_DATA_READ, 1, 1, ALL_ONES, PI::KIND_FLOAT, PI::UNIT_MIB, 0},
         1536000.0F / 1048576,
         8},
        {{PI::PROP_DATA_WRITTEN, PI::CAPTION_DATA_WRITTEN, 1, 1, ALL_ONES, PI::KIND_FLOAT, PI::UNIT_TIB, 0},
         static_cast<float>(4294968.0 * 512000 / 1099511627776),
         8},
        {{PI::PROP_ENDURANCE_USED, PI::CAPTION_ENDURANCE_USED, 1, 1, ALL_ONES, PI::KIND_BOUNDED,
          PI::UNIT_PERCENT, 0},
         PI::CBoundedValue{200, 0, 100, 1}},
        {{PI::PROP_WEAR_STATE, PI::CAPTION_WEAR_STATE, 1, 1, ALL_ONES, PI::KIND_CODE, PI::UNIT_NONE, 1},
         PI::CCodeValue{PI::WEAR_WARNING, {PI::WEAR_OK, PI::WEAR_WARNING, PI::WEAR_CRITICAL}}},
        {{PI::PROP_MEDIA_ERRORS, PI::CAPTION_MEDIA_ERRORS, 1, 1, ALL_ONES, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
         Number{5}},
        {{PI::PROP_STATUS_REASONS, PI::CAPTION_STATUS_REASONS, 1, 1, ALL_ONES, PI::KIND_CODES, PI::UNIT_NONE,
          1},
         PI::CCodeListValue{{PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW},
                            {std::begin(PI::FORESEEN_REASONS), std::end(PI::FORESEEN_REASONS)}}},
    };
}

class CAdapterProperties : public testing::Test
{
protected:
    std::vector<PI::CProperty> Get(CNVMeAdapter& adapter, std::uint32_t propertyId = 1)
    {
        std::vector<PI::CProperty> properties(3);
        EXPECT_EQ(m_Plugin.GetAdapterProperties(adapter, properties, propertyId), 0U);
        return properties;
    }

    std::vector<std::uint32_t> Ids(CNVMeAdapter adapter) { return TestSupport::propertyIds(Get(adapter)); }

    /** The one requested property, which must exist. */
    PI::CProperty One(CNVMeAdapter adapter, std::uint32_t propertyId)
    {
        const std::vector<PI::CProperty> properties = Get(adapter, propertyId);
        EXPECT_EQ(properties.size(), 1U);
        return properties.empty() ? PI::CProperty() : properties.front();
    }

    TestSupport::CVirtualClock m_Clock; // 2026-01-01
    TestSupport::CPluginUnderTest m_Plugin;
};

TEST_F(CAdapterProperties, ShowEveryRowAsTabled)
{
    CNVMeAdapter adapter = adapterWithEverything();
    TestSupport::expectProperties(Get(adapter), expectedOfFullAdapter());
}

TEST_F(CAdapterProperties, ComeOneByOneToo)
{
    for (const CExpectedProperty& expected : expectedOfFullAdapter())
        TestSupport::expectProperty(One(adapterWithEverything(), expected.m_Description.propertyId),
                                    expected);
}

TEST_F(CAdapterProperties, AreNoneForAnUnknownIdentifier)
{
    CNVMeAdapter adapter = adapterWithEverything();
    EXPECT_THAT(Get(adapter, PI::PROP_POLL_INTERVAL), IsEmpty());
    EXPECT_THAT(Get(adapter, 0), IsEmpty());
    EXPECT_THAT(Get(adapter, PI::PROP_DRIVE_TEMPERATURE), IsEmpty())
        << "a drive's temperature is no adapter's";
}

TEST_F(CAdapterProperties, OmitWhatTheRecordDoesNotKnow)
{
    EXPECT_THAT(Ids(CNVMeAdapter()),
                ElementsAre(PI::PROP_NAME, PI::PROP_VENDOR, PI::PROP_MODEL, PI::PROP_MODEL_FAMILY,
                            PI::PROP_ADAPTER_NUMBER, PI::PROP_HEALTH_STATUS, PI::PROP_PCI_SEGMENT,
                            PI::PROP_PCI_BUS, PI::PROP_PCI_DEVICE, PI::PROP_PCI_FUNCTION, PI::PROP_LOCATION,
                            PI::PROP_SERIAL_NUMBER, PI::PROP_DEVICE_NAME, PI::PROP_DRIVER,
                            PI::PROP_AVAILABLE_SPARE, PI::PROP_SPARE_STATE, PI::PROP_SPARE_THRESHOLD,
                            PI::PROP_WEAR_STATE, PI::PROP_MEDIA_ERRORS));
}

TEST_F(CAdapterProperties, OmitEachRowForItsOwnConditionAlone)
{
    const std::size_t all = expectedOfFullAdapter().size();
    const auto without = [&](std::initializer_list<std::uint32_t> missing, auto change) {
        CNVMeAdapter adapter = adapterWithEverything();
        change(adapter);
        const std::vector<std::uint32_t> ids = Ids(adapter);
        EXPECT_EQ(ids.size(), all - missing.size());
        for (const std::uint32_t id : missing)
            EXPECT_THAT(ids, Not(Contains(id)));
    };
    without({PI::PROP_FIRMWARE}, [](CNVMeAdapter& adapter) { adapter.m_FirmwareRevision.clear(); });
    without({PI::PROP_VENDOR_TAG}, [](CNVMeAdapter& adapter) { adapter.m_VendorTag.clear(); });
    without({PI::PROP_DRIVER_VERSION}, [](CNVMeAdapter& adapter) { adapter.m_DriverVersion.clear(); });
    without({PI::PROP_TEMPERATURE}, [](CNVMeAdapter& adapter) { adapter.m_Temperature = -1.0F; });
    without({PI::PROP_TEMPERATURE}, [](CNVMeAdapter& adapter) { adapter.m_Model = "INTEL SSDPF2KX"; });
    without({PI::PROP_END_OF_LIFE_DATE, PI::PROP_POWER_ON_HOURS},
            [](CNVMeAdapter& adapter) { adapter.m_PowerOnHours = UNKNOWN_COUNTER; });
    without({PI::PROP_DATA_READ}, [](CNVMeAdapter& adapter) { adapter.m_DataUnitsRead = UNKNOWN_COUNTER; });
    without({PI::PROP_DATA_WRITTEN, PI::PROP_ENDURANCE_USED},
            [](CNVMeAdapter& adapter) { adapter.m_DataUnitsWritten = UNKNOWN_COUNTER; });
    without({PI::PROP_STATUS_REASONS}, [](CNVMeAdapter& adapter) { adapter.m_HealthReasons.clear(); });
    without({}, [](CNVMeAdapter& adapter) {
        adapter.m_Name.clear();
        adapter.m_Vendor.clear();
        adapter.m_SerialNumber.clear();
        adapter.m_Location.clear();
        adapter.m_DeviceName.clear();
        adapter.m_Driver.clear();
    });
}

TEST_F(CAdapterProperties, AreNoneWhenTheOneAskedForHasNothingToShow)
{
    CNVMeAdapter adapter;
    for (const std::uint32_t id :
         {PI::PROP_FIRMWARE, PI::PROP_VENDOR_TAG, PI::PROP_DRIVER_VERSION, PI::PROP_TEMPERATURE,
          PI::PROP_END_OF_LIFE_DATE, PI::PROP_POWER_ON_HOURS, PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN,
          PI::PROP_ENDURANCE_USED, PI::PROP_STATUS_REASONS})
        EXPECT_THAT(Get(adapter, id), IsEmpty()) << id;
    adapter = adapterWithEverything();
    adapter.m_Model = "INTEL SSDPF2KX";
    EXPECT_THAT(Get(adapter, PI::PROP_TEMPERATURE), IsEmpty()) << "its drive shows the temperature";
}

TEST_F(CAdapterProperties, ShowDataBeyondSixtyFourBitsAsTheMostThereIs)
{
    CNVMeAdapter adapter = adapterWithEverything();
    adapter.m_DataUnitsRead = 0x8000000000000000ULL;
    const PI::CProperty property = One(adapter, PI::PROP_DATA_READ);
    EXPECT_EQ(property.GetValue(), PI::CProperty::Value(16.0F));
    EXPECT_EQ(property.Units(), PI::UNIT_EIB);
}

TEST_F(CAdapterProperties, CutTheMakerFromTheModel)
{
    const auto model = [&](const char* vendor, const char* text) {
        CNVMeAdapter adapter;
        adapter.m_Vendor = vendor;
        adapter.m_Model = text;
        return std::get<std::string>(One(adapter, PI::PROP_MODEL).GetValue());
    };
    EXPECT_EQ(model("MICRON", "MICRON_7450_ABC"), "ABC");
    EXPECT_EQ(model("INTEL", "INTEL SSDPF2KX"), "SSDPF2KX");
    EXPECT_EQ(model("SAMSUNG", "SAMSUNG MZPLL1T6"), "MZPLL1T6");
    EXPECT_EQ(model("KIOXIA", "KIOXIA KCD8X"), "KIOXIA KCD8X");
}

TEST_F(CAdapterProperties, ThrowForAModelThatIsTheMakerAlone)
{
    CNVMeAdapter adapter = adapterWithEverything();
    adapter.m_Model = "INTEL";
    std::vector<PI::CProperty> properties;
    EXPECT_THROW(m_Plugin.GetAdapterProperties(adapter, properties, 1), std::out_of_range);
}

TEST_F(CAdapterProperties, TellTheKnownFamiliesFromOthers)
{
    CNVMeAdapter adapter = adapterWithEverything();
    adapter.m_Model = "INTEL SSDPF2KX";
    EXPECT_EQ(One(adapter, PI::PROP_MODEL_FAMILY).GetValue(),
              PI::CProperty::Value(
                  PI::CCodeValue{PI::KNOWN_FAMILY_NO, {PI::KNOWN_FAMILY_YES, PI::KNOWN_FAMILY_NO}}));
    adapter.m_Model = "INTEL SSDPED1K";
    EXPECT_EQ(One(adapter, PI::PROP_MODEL_FAMILY).GetValue(),
              PI::CProperty::Value(
                  PI::CCodeValue{PI::KNOWN_FAMILY_YES, {PI::KNOWN_FAMILY_YES, PI::KNOWN_FAMILY_NO}}));
}

TEST_F(CAdapterProperties, CarryTheStatusIcon)
{
    CNVMeAdapter adapter = adapterWithEverything();
    using Icon = std::pair<std::uint32_t, std::uint32_t>; // of a status
    for (const auto& [status, icon] : {Icon{PI::HEALTH_HEALTHY, PI::ICON_ADAPTER_HEALTHY},
                                       {PI::HEALTH_DEGRADED, PI::ICON_ADAPTER_DEGRADED},
                                       {PI::HEALTH_CRITICAL, PI::ICON_ADAPTER_CRITICAL},
                                       {1U, PI::ICON_ADAPTER_HEALTHY}}) {
        adapter.m_HealthStatus = status;
        EXPECT_EQ(One(adapter, PI::PROP_HEALTH_STATUS).IconPathID(), icon) << status;
    }
}

TEST_F(CAdapterProperties, CountEnduranceInWholeTebibytes)
{
    CNVMeAdapter adapter = adapterWithEverything();
    const auto used = [&](std::uint64_t units, std::uint64_t rating) {
        adapter.m_DataUnitsWritten = units;
        adapter.m_LifetimeRating = rating;
        return std::get<PI::CBoundedValue>(One(adapter, PI::PROP_ENDURANCE_USED).GetValue()).m_Value;
    };
    EXPECT_EQ(used(4'294'968, 1), 200);
    EXPECT_EQ(used(4'294'967, 1), 100) << "a little below 2 TiB";
    EXPECT_EQ(used(4'294'968, 3), 66);
    EXPECT_EQ(used(0, 1), 0);
    EXPECT_EQ(used(36'028'797'018'963UL, 1), 1'677'721'500) << "the most that 64 bits of bytes give";
    EXPECT_EQ(used(36'028'797'018'964UL, 1), 1'677'721'500) << "more than 64 bits of bytes";
    EXPECT_EQ(used(UNKNOWN_COUNTER - 1, 1), 1'677'721'500);
    EXPECT_EQ(used(4'294'968, UNKNOWN_COUNTER), 0);
}

TEST_F(CAdapterProperties, ShowValuesOutsideTheirBoundsAsTheyAre)
{
    CNVMeAdapter adapter = adapterWithEverything();
    adapter.m_ReserveSpace = 255;
    adapter.m_WarningThreshold = 0;
    EXPECT_EQ(One(adapter, PI::PROP_AVAILABLE_SPARE).GetValue(),
              PI::CProperty::Value(PI::CBoundedValue{255, 0, 100, 1}));
    EXPECT_EQ(One(adapter, PI::PROP_SPARE_THRESHOLD).GetValue(),
              PI::CProperty::Value(PI::CBoundedValue{0, 1, 100, 1}));
}

TEST_F(CAdapterProperties, RenewTheEndOfLifeDateInTheRecord)
{
    CNVMeAdapter adapter = adapterWithEverything();
    adapter.m_EndOfLifeDate = "1999-01-01";
    (void)Get(adapter, PI::PROP_NAME);
    EXPECT_EQ(adapter.m_EndOfLifeDate, "1999-01-01");
    (void)Get(adapter, PI::PROP_END_OF_LIFE_DATE);
    EXPECT_EQ(adapter.m_EndOfLifeDate, "2125-12-08");
    m_Clock.Advance(24ULL * 3'600'000);
    (void)Get(adapter);
    EXPECT_EQ(adapter.m_EndOfLifeDate, "2125-12-09");
}

TEST_F(CAdapterProperties, TraceEntryAndExit)
{
    CNVMeAdapter adapter = adapterWithEverything();
    const std::string function = "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::GetAdapterProperties";
    const std::vector<CCapturedLine> expected = {
        {2, "Ostrel/Src/OstrelAdapter", function, "ENTER GetAdapterProperties (17)"},
        {2, "Ostrel/Src/OstrelAdapter", function, "LEAVE GetAdapterProperties -> 0"}};
    for (const std::uint32_t mask : {2U, ALL_ONES}) {
        const TestSupport::CTraceCapture capture(mask);
        (void)Get(adapter);
        EXPECT_EQ(capture.Lines(), expected) << mask;
    }
    for (const std::uint32_t mask : {0U, 4U, 8U, 16U, 128U}) {
        const TestSupport::CTraceCapture capture(mask);
        (void)Get(adapter);
        EXPECT_THAT(capture.Lines(), IsEmpty()) << mask;
    }
}

} // namespace
