#include "Documents/Json.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Host/Writable.h"
#include "Support/FakeDrives.h"

#include <PI/CaptionId.h>
#include <PI/ErrorCode.h>
#include <PI/EventCode.h>
#include <PI/StateCode.h>
#include <TLXX/NvmeQuery.h>

#include <nlohmann/json.hpp>

#include <limits>

namespace {

using namespace Host::Cli;
using HostTest::property;
using Json = nlohmann::ordered_json;

class JsonTest : public testing::Test
{
    HostTest::Catalogue m_Catalogue;
};

Json parsed(const char* text)
{
    return Json::parse(text);
}

TEST_F(JsonTest, WritesAPropertyOfEachKind)
{
    PI::CProperty temperature = property(PI::PROP_TEMPERATURE, PI::UNIT_CELSIUS, 36.5F);
    temperature.SetNlsID(PI::CAPTION_TEMPERATURE);
    EXPECT_EQ(propertyJson(temperature), parsed(R"({"id": 30442, "caption": "Temperature", "value": 36.5,
        "text": "36.5 °C", "unit": 21000, "unitText": "°C", "settable": false})"));

    EXPECT_EQ(propertyJson(property(PI::PROP_NAME, 1, "x")),
              parsed(R"({"id": 30007, "value": "x", "text": "x", "settable": false})"));

    EXPECT_EQ(propertyJson(property(PI::PROP_CAPACITY, PI::UNIT_MIB, std::uint64_t{18446744073709551615ULL})),
              parsed(R"({"id": 30059, "value": 18446744073709551615,
                         "valueText": "18446744073709551615", "text": "16777216 EiB",
                         "unit": 21002, "unitText": "MiB", "settable": false})"));

    PI::CProperty interval(PI::PROP_POLL_INTERVAL, true);
    interval.SetValue(30, 2, 255, 1);
    interval.SetUnits(PI::UNIT_SECONDS);
    EXPECT_EQ(propertyJson(interval), parsed(R"({"id": 30005, "value": 30, "text": "30 s", "unit": 21007,
        "unitText": "s", "settable": true, "minimum": 2, "maximum": 255, "step": 1})"));

    PI::CProperty health = property(PI::PROP_HEALTH_STATUS, 1, std::uint32_t{PI::HEALTH_HEALTHY},
                                    std::vector<std::uint32_t>{PI::HEALTH_HEALTHY, PI::HEALTH_DEGRADED});
    health.SetIconPathID(PI::ICON_ADAPTER_HEALTHY);
    EXPECT_EQ(propertyJson(health), parsed(R"({"id": 30017, "value": 40024, "text": "Healthy",
        "settable": false, "allowed": [40024, 40150], "icon": 24000})"));

    EXPECT_EQ(propertyJson(property(PI::PROP_STATUS_REASONS, 1,
                                    std::vector<std::uint32_t>{PI::REASON_READ_ONLY, PI::REASON_SPARE_LOW},
                                    std::vector<std::uint32_t>{PI::FORESEEN_REASONS[0]})),
              parsed(R"({"id": 30165, "value": [40452, 40460],
                         "text": "Media is read-only; Available spare below its threshold",
                         "settable": false, "allowed": [40387]})"));
}

TEST_F(JsonTest, WritesFloatsAsShortAsTheyAre)
{
    EXPECT_EQ(propertyJson(property(1, 1, 1.6F))["value"].dump(), "1.6");
}

TEST_F(JsonTest, WritesAnObject)
{
    PI::CObject object;
    object.m_ID = 0x0139000000000001;
    object.m_Type = PI::TYPE_ADAPTER;
    object.m_Parents = {0x0139000000000000};
    object.m_UpdateCount = 3;
    object.m_Operations.emplace_back(
        PI::COperationTemplate{PI::OPERATION_GET_EVENTS, 0, 0, 0, 0, false, 0, 0, 0});
    EXPECT_EQ(objectJson(Host::ObjectStore({object}), object),
              parsed(R"({"id": "0x0139000000000001", "type": 19038,
        "parents": ["0x0139000000000000"], "children": [], "updateCount": 3, "properties": [],
        "operations": [{"id": 50002, "name": "Collect events"}]})"));
}

TEST_F(JsonTest, WritesADriveWithAllItsFields)
{
    const Host::ObjectStore store(HostTest::topologyOf({{0x81, "SERIAL", "/dev/nvme0n1"}}));
    EXPECT_EQ(driveJson(joinDrives(store).at(0)), parsed(R"({
        "device": "/dev/nvme0n1", "vendor": "INTEL", "model": "MODEL-OF-THE-ADAPTER", "serial": "SERIAL",
        "pciAddress": "0000:81:1f.1", "location": "PCI:Bus=129&Device=0&Function=0",
        "firmware": "FW1", "capacityMiB": 1907729, "capacityBytes": 2000398843904, "blockSize": 4096, "temperature": 36.0, "wear": 120,
        "health": "Critical", "healthCode": 40095,
        "reasons": ["Available spare below its threshold", "Media is read-only"], "reasonCodes": [40460, 40452],
        "driver": "nvme", "driverVersion": "6.1", "spare": 98, "spareThreshold": 7,
        "dataRead": {"value": 1.6, "unit": "TiB"}, "dataReadBytes": 1759218630656,
        "dataWritten": {"value": 2.5, "unit": "GiB"}, "dataWrittenBytes": 2684354560,
        "powerOnHours": 11, "mediaErrors": 13,
        "adapterId": "0x0000000000000081", "driveId": "0x0000000000000082"})"));
}

TEST_F(JsonTest, SaysWhichRowsOfAnAdapterAreNotMeasuredAndWhereItIs)
{
    HostTest::DriveObjects objects(16, "SERIAL", "/dev/nvme0n1");
    for (const std::uint32_t id :
         {PI::PROP_DRIVE_TEMPERATURE, PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN, PI::PROP_POWER_ON_HOURS})
        objects.remove(id);
    TLXX::CControllerState state;
    state.m_DeviceName = "/dev/nvme0n1";
    state.m_Location = TLXX::CPciLocation{0x10000, 16, 0x1f, 1};
    const Host::ObjectStore store(HostTest::topologyOf({objects}), {state});
    const Json adapter = objectJson(store, store.objects()[1]);
    EXPECT_EQ(adapter["healthLogRead"], false);
    EXPECT_EQ(adapter["pciAddress"], "10000:10:1f.1");
    EXPECT_EQ(adapter["locationIsReal"], false);
    std::vector<std::uint32_t> unmeasured;
    for (const Json& each : adapter["properties"])
        if (each.contains("measured"))
            unmeasured.push_back(each["id"].get<std::uint32_t>());
    EXPECT_THAT(unmeasured, testing::ElementsAre(PI::PROP_AVAILABLE_SPARE, PI::PROP_SPARE_THRESHOLD,
                                                 PI::PROP_MEDIA_ERRORS));
    const Json medium = objectJson(store, store.objects()[2]);
    EXPECT_EQ(medium["healthLogRead"], false);
    EXPECT_FALSE(medium.contains("pciAddress"));
    EXPECT_FALSE(objectJson(store, store.objects()[0]).contains("healthLogRead"));
    const Json drive = driveJson(joinDrives(store).at(0));
    EXPECT_EQ(drive["healthLogRead"], false);
    EXPECT_EQ(drive["pciAddress"], "10000:10:1f.1");
    EXPECT_EQ(drive["locationIsReal"], false);
}

TEST_F(JsonTest, WritesTheEndOfEachLifeIntoTheList)
{
    HostTest::DriveObjects ends(16, "A", "/dev/nvme0n1");
    ends.m_Adapter.m_Properties.push_back(property(PI::PROP_END_OF_LIFE_DATE, 1, "2099-01-01"));
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0));
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    const Json list =
        listJson(Host::ObjectStore(HostTest::topologyOf({ends, {32, "B", "/dev/nvme1n1"}})))["drives"];
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0]["endOfLife"]["date"], "2099-01-01");
    EXPECT_EQ(list[0]["endOfLife"]["object"], list[0]["adapterId"]);
    EXPECT_FALSE(list[1].contains("endOfLife"));
}

TEST_F(JsonTest, WritesWhatADriveItselfTells)
{
    Drive drive;
    writable(drive.m_HealthLog).PowerCycles = {9007199254740993, 0};
    writable(drive.m_HealthLog).TemperatureSensor[1] = 300;
    writable(drive.m_Identify).VER = 0x10300;
    drive.m_System.emplace();
    drive.m_System->m_Link.m_Speed = 2.5F;
    const Json json = driveJson(drive);
    EXPECT_EQ(json["powerCycles"].dump(), "9007199254740993");
    EXPECT_EQ(json["powerCyclesText"], "9007199254740993");
    EXPECT_EQ(json["unsafeShutdowns"], 0);
    EXPECT_EQ(json["temperatureSensor2"], 27);
    EXPECT_FALSE(json.contains("temperatureSensor1"));
    EXPECT_EQ(json["nvmeVersion"], "1.3");
    EXPECT_EQ(json["linkSpeed"].dump(), "2.5");
    EXPECT_FALSE(json.contains("numaNode"));
}

TEST_F(JsonTest, WritesWhatEachDriveItselfTellsApartFromTheProperties)
{
    const Host::ObjectStore store(HostTest::topologyOf({{0x81, "SERIAL", "/dev/nvme0n1"}}));
    TestSupport::CFakeDrives drives;
    drives.Add(TestSupport::CFakeDrive(0)).m_Health.PowerCycles = {7, 0};
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
    (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    const Json list = ownFactsJson(store, {&store.objects()[0], &store.objects()[1], &store.objects()[2]});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0]["object"], "0x0000000000000081");
    EXPECT_EQ(list[0]["powerCycles"], 7);
    EXPECT_FALSE(list[0].contains("serial"));
    EXPECT_FALSE(list[0].contains("powerOnHours"));
}

TEST_F(JsonTest, AmountsBeyondAllNumbersHaveNoBytes)
{
    Drive drive;
    drive.m_DataRead = Amount{16, PI::UNIT_EIB};
    drive.m_DataWritten = Amount{1, PI::UNIT_CELSIUS};
    drive.m_CapacityMiB = 1ULL << 44U;
    for (const char* name : {"dataReadBytes", "dataWrittenBytes", "capacityBytes"})
        EXPECT_FALSE(driveJson(drive).contains(name)) << name;
    drive.m_CapacityMiB = (1ULL << 44U) - 1;
    EXPECT_EQ(driveJson(drive)["capacityBytes"], 18446744073708503040ULL);
}

TEST_F(JsonTest, LeavesOutWhatADriveDoesNotReport)
{
    EXPECT_EQ(driveJson(Drive{}).dump(), "{}");
    Drive unread;
    unread.m_Health = {std::nullopt, "Unknown"};
    EXPECT_EQ(driveJson(unread), parsed(R"({"health": "Unknown"})"));
}

TEST_F(JsonTest, WritesAnEventInOneLine)
{
    DriveEvent event;
    event.m_Event.m_Time = 1'767'225'600'007;
    event.m_Event.m_Id = PI::EVENT_ADAPTER_ADDED;
    event.m_Event.m_Severity = PI::EVENT_SEVERITY_INFORMATION;
    event.m_Event.m_Source = PI::EVENT_SOURCE_HOST;
    event.m_Event.SetSource("name");
    event.m_Event.SetPlaceHolder1("first\n");
    event.m_Event.SetPlaceHolder2(" ");
    EXPECT_EQ(
        lineText(eventJson(event)),
        R"({"format":1,"time":"2026-01-01T00:00:00.007Z","id":11093,"severity":2,"text":"first\n was added.",)"
        R"("source":"0x0000000000004a3a","sourceName":"name","placeholder1":"first\n",)"
        R"("placeholder2":" "})"
        "\n");
    const Host::ObjectStore store(HostTest::topologyOf({{0x81, "SERIAL", "/dev/nvme0n1"}}));
    event.m_Drive = joinDrives(store).at(0);
    EXPECT_EQ(eventJson(event)["drive"], parsed(R"({"device": "/dev/nvme0n1", "vendor": "INTEL",
        "model": "MODEL-OF-THE-ADAPTER", "serial": "SERIAL", "pciAddress": "0000:81:1f.1",
        "location": "PCI:Bus=129&Device=0&Function=0"})"));
}

TEST_F(JsonTest, WritesFailures)
{
    EXPECT_EQ(failureJson("m", Host::RequestResult{1, PI::ERR_NO_SUPPORTED_HARDWARE}),
              parsed(R"({"error": {"request": 1, "code": 20001, "name": "ERR_NO_SUPPORTED_HARDWARE",
                                   "message": "m"}})"));
    EXPECT_EQ(failureJson("m", std::nullopt), parsed(R"({"error": {"message": "m"}})"));
}

TEST_F(JsonTest, WritesNumbersThatNoDoubleHoldsAsTextToo)
{
    constexpr std::uint64_t largestExact = 9007199254740992ULL;
    const auto hours = [](std::uint64_t number) {
        return propertyJson(property(PI::PROP_POWER_ON_HOURS, PI::UNIT_HOURS, number));
    };
    EXPECT_FALSE(hours(largestExact).contains("valueText"));
    EXPECT_EQ(hours(largestExact + 1)["valueText"], "9007199254740993");
    EXPECT_EQ(hours(largestExact + 1)["value"].dump(), "9007199254740993");

    Drive drive;
    drive.m_MediaErrors = largestExact + 1;
    EXPECT_EQ(driveJson(drive), parsed(R"({"mediaErrors": 9007199254740993,
                                           "mediaErrorsText": "9007199254740993"})"));
    PI::CObject object;
    object.m_UpdateCount = largestExact + 1;
    EXPECT_EQ(objectJson(Host::ObjectStore({object}), object)["updateCountText"], "9007199254740993");
}

TEST_F(JsonTest, LeavesOutMeasurementsThatAreNoNumbers)
{
    const float none = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    EXPECT_FALSE(propertyJson(property(1, 1, none)).contains("value"));
    EXPECT_FALSE(propertyJson(property(1, 1, infinite)).contains("value"));
    Drive drive;
    drive.m_Temperature = none;
    drive.m_DataRead = Amount{infinite, PI::UNIT_TIB};
    EXPECT_EQ(driveJson(drive).dump(), "{}");
}

TEST_F(JsonTest, ADocumentBeginsWithItsFormat)
{
    EXPECT_EQ(documentText({{"drives", Json::array()}}), "{\n  \"format\": 1,\n  \"drives\": []\n}\n");
    EXPECT_EQ(lineText({{"id", 1}}, true), "{\"format\":1,\"simulated\":true,\"id\":1}\n");
}

TEST_F(JsonTest, EscapesEveryControlThatATerminalObeys)
{
    EXPECT_EQ(lineText({{"\u009B", "a\u007Fb\u0080c\u009Fd\x1B"}}),
              R"({"format":1,"\u009b":"a\u007fb\u0080c\u009fd\u001b"})"
              "\n");
    const std::string harmless = "\u00A0\u00C2\u00DF\u2026\U0001F600~";
    EXPECT_EQ(lineText({{"a", harmless}}), "{\"format\":1,\"a\":\"" + harmless + "\"}\n");
    EXPECT_THAT(documentText({{"a", "\u009B"}}), testing::HasSubstr("\\u009b"));
}

TEST_F(JsonTest, ReplacesBytesThatAreNoUtf8)
{
    EXPECT_EQ(Json::parse(documentText({{"a", "x\xFF"}}))["a"], "x\uFFFD");
}

} // namespace
