#include "Support/ExpectedProperty.h"
#include "Support/PluginUnderTest.h"
#include "Support/TraceCapture.h"
#include "Support/VirtualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
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
    adapter.m_HealthStatus = 40150;
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
    adapter.m_SpareState = 40474;
    adapter.m_WarningThreshold = 12;
    adapter.m_DataUnitsRead = 3;            // 1536000 bytes
    adapter.m_DataUnitsWritten = 4'294'968; // just above 2 TiB
    adapter.m_LifetimeRating = 1;
    adapter.m_SpareStatus = 40410;
    adapter.m_UnsafeShutdowns = 5;
    adapter.m_HealthReasons = {40459, 40460};
    return adapter;
}

/** The whole list, written out by hand: id, caption, four attributes, kind and units, value, sub-type, icon.
 */
std::vector<CExpectedProperty> expectedOfFullAdapter()
{
    using Text = std::string;
    using Number = std::uint64_t;
    return {
        {{30007, 23081, 1, 1, ALL_ONES, 2, 1, 1}, Text("NVMe Intel PCI Adapter (BTFU1)")},
        {{30003, 23144, 1, 1, ALL_ONES, 2, 1, 1}, Text("INTEL")},
        {{30063, 23102, 1, 1, ALL_ONES, 2, 1, 1}, Text("SSDPED1K375GA")},
        {{30158, 1, 1, 1, 0, 3, 1, 1}, PI::CCodeValue{40480, {40480, 40488}}},
        {{30120, 35023, 1, 1, ALL_ONES, 5, 1, 1}, Number{17}},
        {{30017, 23127, 1, 1, ALL_ONES, 3, 1, 1}, PI::CCodeValue{40150, {40024, 40150, 40095}}, 0, 24002},
        {{30479, 35039, 1, 1, ALL_ONES, 5, 1, 0}, Number{1}},
        {{30037, 35016, 1, 1, ALL_ONES, 5, 1, 0}, Number{2}},
        {{30038, 35020, 1, 1, ALL_ONES, 5, 1, 0}, Number{3}},
        {{30039, 35022, 1, 1, ALL_ONES, 5, 1, 0}, Number{4}},
        {{30137, 1, 1, 1, 0, 2, 1, 1}, Text("PCI:Segment=1&Bus=2&Device=3&Function=4")},
        {{30022, 23116, 1, 1, ALL_ONES, 2, 1, 1}, Text("BTFU1")},
        {{30020, 23051, 1, 1, ALL_ONES, 2, 1, 1}, Text("E2010600")},
        {{30500, 23016, 1, 1, ALL_ONES, 2, 1, 1}, Text("TAG")},
        {{30247, 23090, 1, 1, ALL_ONES, 2, 1, 1}, Text("/dev/nvme0n1")},
        {{30266, 23041, 1, 1, ALL_ONES, 2, 1, 1}, Text("nvme")},
        {{30018, 23042, 1, 1, ALL_ONES, 2, 1, 1}, Text("6.1.0")},
        {{30442, 23024, 1, 1, ALL_ONES, 5, 21000, 0}, 31.5F, 8},
        {{30483, 23045, 1, 1, ALL_ONES, 2, 1, 0}, Text("2125-12-08")},
        {{30498, 23101, 1, 1, ALL_ONES, 5, 21005, 0}, Number{1234}},
        {{30486, 35034, 1, 1, ALL_ONES, 7, 21010, 0}, PI::CBoundedValue{99, 0, 100, 1}},
        {{30487, 30017, 1, 1, ALL_ONES, 3, 1, 1}, PI::CCodeValue{40474, {40473, 40150, 40474}}},
        {{30488, 35045, 1, 1, ALL_ONES, 7, 21010, 1}, PI::CBoundedValue{12, 1, 100, 1}},
        {{30489, 23017, 1, 1, ALL_ONES, 9, 21002, 0}, 1536000.0F / 1048576, 8},
        {{30490, 23018, 1, 1, ALL_ONES, 9, 21004, 0},
         static_cast<float>(4294968.0 * 512000 / 1099511627776),
         8},
        {{30494, 23105, 1, 1, ALL_ONES, 7, 21010, 0}, PI::CBoundedValue{200, 0, 100, 1}},
        {{30468, 23147, 1, 1, ALL_ONES, 3, 1, 1}, PI::CCodeValue{40410, {40252, 40410, 40411}}},
        {{30189, 23143, 1, 1, ALL_ONES, 5, 1, 0}, Number{5}},
        {{30165, 23004, 1, 1, ALL_ONES, 8, 1, 1},
         PI::CCodeListValue{
             {40459, 40460},
             {40387, 40128, 40393, 40394, 40395, 40396, 40397, 40398, 40399, 40400, 40401, 40402, 40266}}},
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
    EXPECT_THAT(Get(adapter, 30005), IsEmpty());
    EXPECT_THAT(Get(adapter, 0), IsEmpty());
    EXPECT_THAT(Get(adapter, 30069), IsEmpty()) << "a drive's temperature is no adapter's";
}

TEST_F(CAdapterProperties, OmitWhatTheRecordDoesNotKnow)
{
    EXPECT_THAT(Ids(CNVMeAdapter()),
                ElementsAre(30007, 30003, 30063, 30158, 30120, 30017, 30479, 30037, 30038, 30039, 30137,
                            30022, 30247, 30266, 30486, 30487, 30488, 30468, 30189));
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
    without({30020}, [](CNVMeAdapter& adapter) { adapter.m_FirmwareRevision.clear(); });
    without({30500}, [](CNVMeAdapter& adapter) { adapter.m_VendorTag.clear(); });
    without({30018}, [](CNVMeAdapter& adapter) { adapter.m_DriverVersion.clear(); });
    without({30442}, [](CNVMeAdapter& adapter) { adapter.m_Temperature = -1.0F; });
    without({30442}, [](CNVMeAdapter& adapter) { adapter.m_Model = "INTEL SSDPF2KX"; });
    without({30483, 30498}, [](CNVMeAdapter& adapter) { adapter.m_PowerOnHours = UNKNOWN_COUNTER; });
    without({30489}, [](CNVMeAdapter& adapter) { adapter.m_DataUnitsRead = UNKNOWN_COUNTER; });
    without({30490, 30494}, [](CNVMeAdapter& adapter) { adapter.m_DataUnitsWritten = UNKNOWN_COUNTER; });
    without({30165}, [](CNVMeAdapter& adapter) { adapter.m_HealthReasons.clear(); });
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
         {30020U, 30500U, 30018U, 30442U, 30483U, 30498U, 30489U, 30490U, 30494U, 30165U})
        EXPECT_THAT(Get(adapter, id), IsEmpty()) << id;
    adapter = adapterWithEverything();
    adapter.m_Model = "INTEL SSDPF2KX";
    EXPECT_THAT(Get(adapter, 30442), IsEmpty()) << "its drive shows the temperature";
}

TEST_F(CAdapterProperties, ShowDataBeyondSixtyFourBitsAsTheMostThereIs)
{
    CNVMeAdapter adapter = adapterWithEverything();
    adapter.m_DataUnitsRead = 0x8000000000000000ULL;
    const PI::CProperty property = One(adapter, 30489);
    EXPECT_EQ(property.GetValue(), PI::CProperty::Value(16.0F));
    EXPECT_EQ(property.Units(), PI::UNIT_EIB);
}

TEST_F(CAdapterProperties, CutTheMakerFromTheModel)
{
    const auto model = [&](const char* vendor, const char* text) {
        CNVMeAdapter adapter;
        adapter.m_Vendor = vendor;
        adapter.m_Model = text;
        return std::get<std::string>(One(adapter, 30063).GetValue());
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
    EXPECT_EQ(One(adapter, 30158).GetValue(), PI::CProperty::Value(PI::CCodeValue{40488, {40480, 40488}}));
    adapter.m_Model = "INTEL SSDPED1K";
    EXPECT_EQ(One(adapter, 30158).GetValue(), PI::CProperty::Value(PI::CCodeValue{40480, {40480, 40488}}));
}

TEST_F(CAdapterProperties, CarryTheStatusIcon)
{
    CNVMeAdapter adapter = adapterWithEverything();
    for (const auto& [status, icon] :
         {std::pair{40024U, 24000U}, {40150U, 24002U}, {40095U, 24001U}, {1U, 24000U}}) {
        adapter.m_HealthStatus = status;
        EXPECT_EQ(One(adapter, 30017).IconPathID(), icon) << status;
    }
}

TEST_F(CAdapterProperties, CountEnduranceInWholeTebibytes)
{
    CNVMeAdapter adapter = adapterWithEverything();
    const auto used = [&](std::uint64_t units, std::uint64_t rating) {
        adapter.m_DataUnitsWritten = units;
        adapter.m_LifetimeRating = rating;
        return std::get<PI::CBoundedValue>(One(adapter, 30494).GetValue()).m_Value;
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
    EXPECT_EQ(One(adapter, 30486).GetValue(), PI::CProperty::Value(PI::CBoundedValue{255, 0, 100, 1}));
    EXPECT_EQ(One(adapter, 30488).GetValue(), PI::CProperty::Value(PI::CBoundedValue{0, 1, 100, 1}));
}

TEST_F(CAdapterProperties, RenewTheEndOfLifeDateInTheRecord)
{
    CNVMeAdapter adapter = adapterWithEverything();
    adapter.m_EndOfLifeDate = "1999-01-01";
    (void)Get(adapter, 30007);
    EXPECT_EQ(adapter.m_EndOfLifeDate, "1999-01-01");
    (void)Get(adapter, 30483);
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
