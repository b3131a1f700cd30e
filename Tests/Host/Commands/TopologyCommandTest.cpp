#include "Commands/TopologyCommand.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"

#include <PI/CaptionId.h>
#include <PI/StateCode.h>

namespace {

using Host::Cli::topologyText;
using HostTest::property;

class TopologyCommandTest : public testing::Test
{
    HostTest::Catalogue m_Catalogue;
};

PI::CObject objectOf(std::uint64_t id, std::uint32_t type, std::vector<std::uint64_t> children,
                     std::vector<PI::CProperty> properties)
{
    PI::CObject object;
    object.m_ID = id;
    object.m_Type = type;
    object.m_Children = std::move(children);
    object.m_Properties = std::move(properties);
    return object;
}

TEST_F(TopologyCommandTest, ShowsEachObjectBelowItsParent)
{
    std::vector<PI::CObject> objects = {
        objectOf(1, PI::TYPE_PLUGIN, {2}, {property(PI::PROP_NAME, 1, "The plug-in")}),
        objectOf(2, PI::TYPE_ADAPTER, {3},
                 {property(PI::PROP_NAME, 1, ""), property(PI::PROP_VENDOR, 1, "INTEL"),
                  property(PI::PROP_MODEL, 1, "X")}),
        objectOf(3, PI::TYPE_PHYSICAL_DRIVE, {},
                 {property(PI::PROP_NAME, 1, "Prod\033uct"),
                  property(PI::PROP_CAPACITY, PI::UNIT_MIB, std::uint64_t{5})})};
    objects[0].m_Operations.emplace_back(
        PI::COperationTemplate{PI::OPERATION_GET_EVENTS, 0, 0, 0, 0, false, 0, 0, 0});
    for (PI::CObject& object : objects)
        for (PI::CProperty& one : object.m_Properties)
            one.SetNlsID(one.Id() == PI::PROP_CAPACITY ? PI::DRIVE_CAPTION_CAPACITY
                         : one.Id() == PI::PROP_NAME   ? PI::CAPTION_NAME
                                                       : PI::CAPTION_NONE);
    EXPECT_EQ(topologyText(Host::ObjectStore(objects), {}),
              "Plug-in The plug-in  0x0000000000000001\n"
              "  Name  The plug-in\n"
              "  Operations: 50002 Collect events\n"
              "  Adapter INTEL X  0x0000000000000002\n"
              "    Property 30003  INTEL\n"
              "    Property 30063  X\n"
              "    Physical drive Prod?uct  0x0000000000000003\n"
              "      Name      Prod?uct\n"
              "      Capacity  5 MiB\n");
}

TEST_F(TopologyCommandTest, ShowsObjectsThatNameOneAnotherInACircleOnce)
{
    const Host::ObjectStore store(
        {objectOf(1, PI::TYPE_ADAPTER, {2}, {}), objectOf(2, PI::TYPE_ADAPTER, {1}, {})});
    EXPECT_EQ(topologyText(store, {}), "Adapter  0x0000000000000001\n  Adapter  0x0000000000000002\n");
}

TEST_F(TopologyCommandTest, KeepsLongValuesInTheirColumnOnATerminal)
{
    const Host::ObjectStore store(
        {objectOf(1, PI::TYPE_ADAPTER, {}, {property(PI::PROP_DRIVER, 1, "one two three four five")})});
    EXPECT_EQ(topologyText(store, {40, false}), "Adapter  0x0000000000000001\n"
                                                "  Property 30266  one two three four\n"
                                                "                  five\n");
}

TEST_F(TopologyCommandTest, FitsATerminalThatIsAsNarrowAsItsCaptions)
{
    const Host::ObjectStore store({objectOf(
        1, PI::TYPE_ADAPTER, {},
        {property(PI::PROP_NAME, 1, "A drive"), property(PI::PROP_DRIVER, 1, "one two three four five"),
         property(PI::PROP_HEALTH_STATUS, 1, std::uint32_t{PI::REASON_SPARE_LOW},
                  std::vector<std::uint32_t>{})})});
    EXPECT_EQ(topologyText(store, {25, false}), "Adapter A drive\n"
                                                "0x0000000000000001\n"
                                                "  Property 30007\n"
                                                "    A drive\n"
                                                "  Property 30266\n"
                                                "    one two three four\n"
                                                "    five\n"
                                                "  Property 30017\n"
                                                "    Available spare below\n"
                                                "    its threshold\n");
}

TEST_F(TopologyCommandTest, ColoursStates)
{
    const Host::ObjectStore store(
        {objectOf(1, PI::TYPE_ADAPTER, {},
                  {property(PI::PROP_HEALTH_STATUS, 1, std::uint32_t{PI::HEALTH_DEGRADED},
                            std::vector<std::uint32_t>{})})});
    EXPECT_THAT(topologyText(store, {80, true}), testing::HasSubstr("\033[33mDegraded\033[0m"));
}

} // namespace
