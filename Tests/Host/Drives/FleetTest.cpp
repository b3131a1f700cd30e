#include "Drives/Fleet.h"

#include <nlohmann/json.hpp>

#include <cstring>
#include <functional>

namespace {

using nlohmann::json;

json goodFleet()
{
    return json::parse(R"({"controllers": [{
        "device": "/dev/nvme7n1", "driver": "nvme", "driverVersion": "6.1",
        "location": "0001:3b:1f.7",
        "identify": {"vendorId": "0x8086", "model": "INTEL X", "serial": "S1", "firmware": "F1", "tag": "TAG"},
        "namespace": {"blocks": 1000, "blockSize": 4096},
        "health": {"criticalWarning": 5, "temperature": -3, "spare": 90, "threshold": 20,
                   "dataUnitsRead": 18446744073709551615, "dataUnitsWritten": 2, "powerOnHours": 3,
                   "mediaErrors": 4},
        "vendorLogs": {"0xC5": {"temperature": 80, "offset": 2}, "0xCA": {"attributeAD": 97, "attributeEA": 98},
                       "0xDD": {"name": "Some Series"}, "0xFE": "01 02 ff"}
    }]})");
}

std::string refusalOfText(const std::string& text)
{
    try {
        Host::parseFleet(text);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "accepted";
}

std::string complaintAbout(const json& fleet)
{
    return refusalOfText(fleet.dump());
}

/** The message about a good fleet after `spoil` has changed its controller. */
std::string complaintAfter(const std::function<void(json&)>& spoil)
{
    json fleet = goodFleet();
    spoil(fleet["controllers"][0]);
    return complaintAbout(fleet);
}

TEST(Fleet, TakesValuesByNameToTheirBytes)
{
    const auto fleet = Host::parseFleet(goodFleet().dump());
    ASSERT_EQ(fleet.size(), 1U);
    const Host::SimulatedController& controller = fleet[0];
    EXPECT_EQ(controller.m_DeviceName, "/dev/nvme7n1");
    EXPECT_EQ(controller.m_Driver, "nvme");
    EXPECT_EQ(controller.m_DriverVersion, "6.1");
    EXPECT_EQ(controller.m_Location, (TLXX::CPciLocation{1, 0x3B, 0x1F, 7}));
    EXPECT_EQ(controller.m_Identify->VID, 0x8086);
    EXPECT_EQ(controller.m_Identify->sModelNumber(), "INTEL X");
    EXPECT_EQ(controller.m_Identify->sSerialNumber(), "S1");
    EXPECT_EQ(controller.m_Identify->sFirmwareRevision(), "F1");
    EXPECT_EQ(controller.m_Identify->sVendorTag(), "TAG");
    EXPECT_EQ(controller.m_Namespace->LBASize(), 4096U);
    EXPECT_EQ(controller.m_Identify->Capacity(*controller.m_Namespace), 4096000U);
    EXPECT_EQ(controller.m_Health->CriticalWarning(), 5);
    EXPECT_EQ(controller.m_Health->CompositeTemperature(), 270);
    EXPECT_EQ(controller.m_Health->AvailableSpare, 90);
    EXPECT_EQ(controller.m_Health->AvailableSpareThreshold, 20);
    EXPECT_EQ(controller.m_Health->DataUnitsRead[0], 18446744073709551615ULL);
    EXPECT_EQ(controller.m_Health->DataUnitsWritten[0], 2U);
    EXPECT_EQ(controller.m_Health->Counter128[0], 3U);
    EXPECT_EQ(controller.m_Health->Counter160[0], 4U);
    EXPECT_EQ(controller.m_VendorLogs.at(0xC5)[0], 80);
    EXPECT_EQ(controller.m_VendorLogs.at(0xC5)[104], 2);
    EXPECT_EQ(controller.m_VendorLogs.at(0xCA)[27], 97);
    EXPECT_EQ(controller.m_VendorLogs.at(0xCA)[99], 98);
    EXPECT_STREQ(reinterpret_cast<const char*>(controller.m_VendorLogs.at(0xDD).data()), "Some Series");
    EXPECT_EQ(controller.m_VendorLogs.at(0xFE)[1], 2);
    EXPECT_EQ(controller.m_VendorLogs.at(0xFE)[2], 0xFF);
    EXPECT_EQ(controller.m_VendorLogs.at(0xFE)[3], 0);
}

TEST(Fleet, TakesEachNumberOfThePagesToItsBytes)
{
    struct Case
    {
        const char* m_Name;
        std::size_t m_Offset;
        std::size_t m_Size;
    };
    const std::vector<Case> health = {{"criticalWarning", 0, 1},
                                      {"spare", 3, 1},
                                      {"threshold", 4, 1},
                                      {"percentageUsed", 5, 1},
                                      {"dataUnitsRead", 32, 8},
                                      {"dataUnitsWritten", 48, 8},
                                      {"hostReadCommands", 64, 8},
                                      {"hostWriteCommands", 80, 8},
                                      {"controllerBusyMinutes", 96, 8},
                                      {"powerCycles", 112, 8},
                                      {"powerOnHours", 128, 8},
                                      {"unsafeShutdowns", 144, 8},
                                      {"mediaErrors", 160, 8},
                                      {"errorLogEntries", 176, 8},
                                      {"warningTemperatureMinutes", 192, 4},
                                      {"criticalTemperatureMinutes", 196, 4},
                                      {"thermalTransitions1", 216, 4},
                                      {"thermalTransitions2", 220, 4},
                                      {"thermalSeconds1", 224, 4},
                                      {"thermalSeconds2", 228, 4}};
    const std::vector<Case> identify = {
        {"namespaceLimit", 516, 4}, {"totalCapacityBytes", 280, 8}, {"unallocatedCapacityBytes", 296, 8}};
    const auto check = [](const char* block, const Case& each, auto page) {
        const std::uint64_t largest = ~std::uint64_t{0} >> 8 * (8 - each.m_Size);
        json fleet = goodFleet();
        fleet["controllers"][0][block][each.m_Name] = largest;
        const auto parsed = Host::parseFleet(fleet.dump());
        std::uint64_t value = 0;
        std::memcpy(&value, reinterpret_cast<const char*>(&page(parsed[0])) + each.m_Offset, each.m_Size);
        EXPECT_EQ(value, largest) << each.m_Name;
        if (each.m_Size == 8)
            return;
        fleet["controllers"][0][block][each.m_Name] = largest + 1;
        EXPECT_THAT(complaintAbout(fleet), testing::HasSubstr(each.m_Name));
    };
    for (const Case& each : health)
        check(
            "health", each, [](const auto& controller) -> const auto& { return *controller.m_Health; });
    for (const Case& each : identify)
        check(
            "identify", each, [](const auto& controller) -> const auto& { return *controller.m_Identify; });
}

TEST(Fleet, TakesTemperaturesAndTheVersionToTheirBytes)
{
    json fleet = goodFleet();
    json& controller = fleet["controllers"][0];
    controller["identify"]["warningTemperature"] = 70;
    controller["identify"]["criticalTemperature"] = 85;
    controller["identify"]["nvmeVersion"] = "1.2.1";
    controller["health"]["temperatureSensor1"] = -5;
    controller["health"]["temperatureSensor8"] = 40;
    const auto parsed = Host::parseFleet(fleet.dump());
    EXPECT_EQ(parsed[0].m_Identify->WCTEMP, 343);
    EXPECT_EQ(parsed[0].m_Identify->CCTEMP, 358);
    EXPECT_EQ(parsed[0].m_Identify->VER, 0x00010201U);
    EXPECT_THAT(parsed[0].m_Health->TemperatureSensor, testing::ElementsAre(268, 0, 0, 0, 0, 0, 0, 313));
    controller["identify"]["nvmeVersion"] = "2.0";
    EXPECT_EQ(Host::parseFleet(fleet.dump())[0].m_Identify->VER, 0x00020000U);
    for (const char* wrong : {"1.", ".1", "1..2", "1.2.3.4", "1.256", "-1.0", "1.4 "}) {
        controller["identify"]["nvmeVersion"] = wrong;
        EXPECT_THAT(complaintAbout(fleet), testing::HasSubstr("such as \"1.4\"")) << wrong;
    }
}

TEST(Fleet, TakesRecordedPagesAsHexadecimalDigits)
{
    json fleet = goodFleet();
    std::string page(8192, '0');
    page.replace(0, 4, "4d14");
    fleet["controllers"][0]["identify"] = page;
    fleet["controllers"][0]["health"] = "01 2C01 55";
    const auto parsed = Host::parseFleet(fleet.dump());
    EXPECT_EQ(parsed[0].m_Identify->VID, 0x144D);
    EXPECT_EQ(parsed[0].m_Health->CriticalWarning(), 1);
    EXPECT_EQ(parsed[0].m_Health->CompositeTemperature(), 300);
    EXPECT_EQ(parsed[0].m_Health->AvailableSpare, 0x55);
}

TEST(Fleet, TakesAnEmptyPageForOneOfZeros)
{
    const auto parsed = Host::parseFleet(R"({"controllers": [{"identify": "", "health": " "}]})");
    EXPECT_EQ(parsed[0].m_Identify->VID, 0);
    EXPECT_EQ(parsed[0].m_Identify->sModelNumber(), "");
    EXPECT_EQ(parsed[0].m_Health->CompositeTemperature(), 0);
}

TEST(Fleet, TakesHowADriveAnswers)
{
    json fleet = goodFleet();
    json& controller = fleet["controllers"][0];
    controller["delayMilliseconds"] = 20;
    controller["hangs"] = true;
    controller["fails"] = {"vendorLog", "identifyController"};
    auto parsed = Host::parseFleet(fleet.dump());
    EXPECT_EQ(parsed[0].m_Delay, std::chrono::milliseconds(20));
    EXPECT_TRUE(parsed[0].m_Hangs);
    EXPECT_EQ(parsed[0].m_Fails, (std::set{TLXX::EQuery::IdentifyController, TLXX::EQuery::VendorLog}));
    controller["hangs"] = false;
    controller["fails"] = {"healthLog", "identifyNamespace"};
    parsed = Host::parseFleet(fleet.dump());
    EXPECT_FALSE(parsed[0].m_Hangs);
    EXPECT_EQ(parsed[0].m_Fails, (std::set{TLXX::EQuery::IdentifyNamespace, TLXX::EQuery::SmartHealthLog}));
}

TEST(Fleet, RefusesWaysToAnswerThatAreNone)
{
    for (const json& value : {json(-1), json(3600001), json(0.5), json("soon")})
        EXPECT_THAT(complaintAfter([&](json& c) { c["delayMilliseconds"] = value; }),
                    testing::StartsWith("/controllers/0/delayMilliseconds has to be a whole number"))
            << value;
    EXPECT_EQ(complaintAfter([](json& c) { c["hangs"] = 1; }),
              "/controllers/0/hangs has to be true or false");
    for (const json& value : {json("vendorLog"), json({"vendorLogs"}), json({"healthLog", "healthLog"}),
                              json::array({1}), json(true)})
        EXPECT_EQ(complaintAfter([&](json& c) { c["fails"] = value; }),
                  "/controllers/0/fails has to be a list, in brackets, with each of these at most once: "
                  "identifyController, identifyNamespace, healthLog, vendorLog")
            << value;
    EXPECT_EQ(complaintAfter([](json& c) { c["fails"] = json::array(); }), "accepted");
}

TEST(Fleet, LeavesOutWhatIsNotThere)
{
    const auto fleet = Host::parseFleet(R"({"controllers": [{}, {}]})");
    ASSERT_EQ(fleet.size(), 2U);
    EXPECT_EQ(fleet[0].m_DeviceName, "/dev/nvme0n1");
    EXPECT_EQ(fleet[1].m_DeviceName, "/dev/nvme1n1");
    EXPECT_EQ(fleet[1].m_Driver, "nvme");
    EXPECT_FALSE(fleet[0].m_Location || fleet[0].m_Identify || fleet[0].m_Namespace || fleet[0].m_Health);
    EXPECT_TRUE(fleet[0].m_VendorLogs.empty());
    EXPECT_EQ(fleet[0].m_Delay.count(), 0);
    EXPECT_FALSE(fleet[0].m_Hangs);
    EXPECT_TRUE(fleet[0].m_Fails.empty());
    EXPECT_TRUE(Host::parseFleet(R"({"controllers": []})").empty());
}

TEST(Fleet, RefusesTextThatIsNoJson)
{
    for (const char* text : {"", "{", R"({"controllers": [)", "\xFF\xFE", "{'controllers': []}"})
        EXPECT_THAT(refusalOfText(text), testing::StartsWith("parse error at line 1, column")) << text;
}

TEST(Fleet, RefusesNumbersBeyondEveryRange)
{
    for (const char* text : {R"({"controllers": [{"identify": {"vendorId": 1e999}}]})", "[1e999]", "-1e999"})
        EXPECT_THAT(refusalOfText(text), testing::HasSubstr("number overflow parsing")) << text;
}

TEST(Fleet, RefusesANameThatStandsTwiceInOneObject)
{
    EXPECT_EQ(refusalOfText(R"({"controllers": [], "controllers": []})"),
              "\"controllers\" stands twice in one object");
    EXPECT_EQ(refusalOfText(R"({"controllers": [{"driver": "a"}, {"driver": "b", "driver": "b"}]})"),
              "\"driver\" stands twice in one object");
    EXPECT_THAT(refusalOfText(R"({"controllers": [{"vendorLogs": {"0xC5": "00", "0xc5": "00"}}]})"),
                testing::HasSubstr("is there in another spelling, too"));
}

TEST(Fleet, LetsNoNameForgeALineOfItsMessages)
{
    EXPECT_EQ(complaintAbout({{"a\nostrel: all is well\x1B", 1}}),
              "/a?ostrel: all is well? is not known here; known are: controllers");
    EXPECT_EQ(refusalOfText("{\"a\\nb\": 1, \"a\\nb\": 2}"), "\"a?b\" stands twice in one object");
    EXPECT_THAT(refusalOfText("{\"a\": \"\xC3(\n"),
                testing::Not(testing::AnyOf(testing::HasSubstr("\n"), testing::HasSubstr("\xC3"))));
}

TEST(Fleet, RefusesAnotherShape)
{
    EXPECT_EQ(complaintAbout(json::array()), "the document has to be an object, in braces");
    EXPECT_EQ(complaintAbout(json::object()), "/controllers has to be there as a list, in brackets");
    EXPECT_EQ(complaintAbout({{"controllers", 5}}), "/controllers has to be there as a list, in brackets");
    EXPECT_EQ(complaintAbout({{"controllers", {5}}}), "/controllers/0 has to be an object, in braces");
    EXPECT_EQ(complaintAfter([](json& c) { c["identify"] = 5; }),
              "/controllers/0/identify has to be an object, in braces");
}

TEST(Fleet, RefusesNamesThatItDoesNotKnow)
{
    json fleet = goodFleet();
    fleet["drives"] = 1;
    EXPECT_EQ(complaintAbout(fleet), "/drives is not known here; known are: controllers");
    EXPECT_THAT(complaintAfter([](json& c) { c["modell"] = 1; }),
                testing::StartsWith("/controllers/0/modell is not known here; known are: device, driver, "));
    EXPECT_THAT(complaintAfter([](json& c) { c["identify"]["color"] = 1; }),
                testing::StartsWith("/controllers/0/identify/color is not known here"));
    EXPECT_THAT(complaintAfter([](json& c) { c["namespace"]["size"] = 1; }),
                testing::StartsWith("/controllers/0/namespace/size is not known here"));
    EXPECT_THAT(complaintAfter([](json& c) { c["health"]["temp"] = 1; }),
                testing::StartsWith("/controllers/0/health/temp is not known here"));
    EXPECT_THAT(complaintAfter([](json& c) { c["vendorLogs"]["0xCA"]["AD"] = 1; }),
                testing::StartsWith("/controllers/0/vendorLogs/0xCA/AD is not known here"));
}

TEST(Fleet, RefusesWhatIsMissing)
{
    for (const char* key : {"vendorId", "model", "serial"})
        EXPECT_EQ(complaintAfter([&](json& c) { c["identify"].erase(key); }),
                  std::string("/controllers/0/identify/") + key + " is missing");
    EXPECT_EQ(complaintAfter([](json& c) { c["health"].erase("temperature"); }),
              "/controllers/0/health/temperature is missing");
    EXPECT_EQ(complaintAfter([](json& c) { c["namespace"].erase("blocks"); }),
              "/controllers/0/namespace needs either \"blocks\" or \"capacity\" (in bytes)");
}

TEST(Fleet, RefusesNumbersOutOfRange)
{
    for (const json& value : {json(65536), json(-1), json(1.5), json("8086"), json("0x"), json("0x1FFFF"),
                              json("0x12G"), json(true), json(nullptr)})
        EXPECT_THAT(complaintAfter([&](json& c) { c["identify"]["vendorId"] = value; }),
                    testing::StartsWith("/controllers/0/identify/vendorId has to be a whole number from 0 to "
                                        "65535"))
            << value;
    for (const json& value : {json(-273), json(728), json(36.5), json("36"), json(18446744073709551615ULL)})
        EXPECT_EQ(complaintAfter([&](json& c) { c["health"]["temperature"] = value; }),
                  "/controllers/0/health/temperature has to be a whole number from -272 to 727")
            << value;
    for (const char* key : {"criticalWarning", "spare", "threshold"})
        EXPECT_THAT(complaintAfter([&](json& c) { c["health"][key] = 256; }),
                    testing::HasSubstr("has to be a whole number from 0 to 255"));
    EXPECT_THAT(complaintAfter([](json& c) { c["vendorLogs"]["0xC5"]["offset"] = 256; }),
                testing::HasSubstr("/vendorLogs/0xC5/offset has to be a whole number from 0 to 255"));
    for (const json& value : {json(0), json(256), json(1000), json(131072)})
        EXPECT_THAT(complaintAfter([&](json& c) { c["namespace"]["blockSize"] = value; }),
                    testing::StartsWith("/controllers/0/namespace/blockSize has to be"));
}

TEST(Fleet, TakesTheLimits)
{
    EXPECT_EQ(complaintAfter([](json& c) {
                  c["identify"]["vendorId"] = 65535;
                  c["identify"]["model"] = std::string(40, 'M');
                  c["identify"]["serial"] = std::string(20, 'S');
                  c["identify"]["firmware"] = std::string(8, 'F');
                  c["identify"]["tag"] = std::string(8, 'T');
                  c["health"]["temperature"] = 727;
                  c["health"]["spare"] = 255;
                  c["namespace"]["blockSize"] = 65536;
              }),
              "accepted");
}

TEST(Fleet, RefusesCapacitiesThatDoNotFit)
{
    const auto withNamespace = [](const char* text) {
        return complaintAfter([&](json& c) { c["namespace"] = json::parse(text); });
    };
    EXPECT_EQ(withNamespace(R"({"capacity": 8192, "blockSize": 4096})"), "accepted");
    EXPECT_EQ(withNamespace(R"({"capacity": 0})"), "accepted");
    EXPECT_THAT(withNamespace(R"({"capacity": 1000})"),
                testing::HasSubstr("multiple of the block size, 512"));
    EXPECT_THAT(withNamespace(R"({"capacity": 512, "blocks": 1})"), testing::HasSubstr("needs either"));
}

TEST(Fleet, RefusesTextsThatDoNotFit)
{
    const auto withModel = [](const json& value) {
        return complaintAfter([&](json& c) { c["identify"]["model"] = value; });
    };
    const std::string expected =
        "/controllers/0/identify/model has to be a text of at most 40 printable ASCII characters";
    EXPECT_EQ(withModel(std::string(41, 'M')), expected);
    EXPECT_EQ(withModel("a\nb"), expected);
    EXPECT_EQ(withModel("\u00e4"), expected);
    EXPECT_EQ(withModel(5), expected);
}

TEST(Fleet, RefusesHexadecimalThatDoesNotFit)
{
    const auto withHealth = [](const std::string& digits) {
        return complaintAfter([&](json& c) { c["health"] = digits; });
    };
    EXPECT_EQ(withHealth(std::string(1024, 'a')), "accepted");
    for (const std::string& digits : {std::string(1026, 'a'), std::string("abc"), std::string("0g")})
        EXPECT_THAT(withHealth(digits),
                    testing::StartsWith("/controllers/0/health has to be values by name, or "
                                        "at most 512 bytes"));
}

TEST(Fleet, RefusesLocationsThatAreNoPciAddress)
{
    for (const char* address : {"", "01:00.0", "0000:01:00", "0000:01:00.8", "0000:100:00.0", "0000:01:20.0",
                                "0000:01:00.0 ", "-001:01:00.0", "PCI:Bus=1"})
        EXPECT_EQ(complaintAfter([&](json& c) { c["location"] = address; }),
                  "/controllers/0/location has to be a PCI address such as \"0000:3b:00.0\"")
            << address;
}

TEST(Fleet, RefusesVendorLogsThatAreNone)
{
    for (const char* name : {"0x02", "C5", "0xZZ", "0x100", "197"})
        EXPECT_THAT(complaintAfter([&](json& c) { c["vendorLogs"][name] = "00"; }),
                    testing::HasSubstr("is no vendor log"))
            << name;
    EXPECT_THAT(complaintAfter([](json& c) { c["vendorLogs"]["0xC0"] = json::object(); }),
                testing::HasSubstr("/0xC0 has no values known by name"));
    EXPECT_THAT(complaintAfter([](json& c) { c["vendorLogs"]["0xDD"]["name"] = std::string(512, 'x'); }),
                testing::HasSubstr("at most 511"));
}

TEST(Fleet, RefusesOneDeviceForTwoControllers)
{
    EXPECT_EQ(complaintAbout(json::parse(R"({"controllers": [{"device": "/dev/nvme1n1"}, {}]})")),
              "/controllers/1/device stands for two controllers");
}

} // namespace
