#include "Core/ObjectStore.h"

#include "Core/Failure.h"
#include "Host/Objects.h"

namespace {

using HostTest::DriveObjects;
using testing::ElementsAre;
using testing::HasSubstr;

class ObjectStoreTest : public testing::Test
{
protected:
    std::vector<std::uint64_t> named(std::string_view name) const
    {
        std::vector<std::uint64_t> ids;
        for (const PI::CObject* object : m_Store.named(name))
            ids.push_back(object->m_ID);
        return ids;
    }

    std::string refusalOf(std::string_view name) const
    {
        try {
            m_Store.named(name);
        } catch (const Host::Failure& failure) {
            EXPECT_EQ(failure.exitCode(), Host::ExitCode::WrongUsage);
            return failure.what();
        }
        return "found";
    }

    Host::ObjectStore m_Store{HostTest::topologyOf(
        {{16, "ABC1", "/dev/nvme0n1"}, {32, "TWIN", ".PhysicalDrive1"}, {48, "TWIN", "/dev/nvme2n1"}})};
};

TEST_F(ObjectStoreTest, AnIdentifierOrALocationNamesOneObject)
{
    EXPECT_THAT(named("0x10"), ElementsAre(16));
    EXPECT_THAT(named("0X0000000000000011"), ElementsAre(17));
    EXPECT_THAT(named("PCI:Bus=16&Device=0&Function=0"), ElementsAre(16));
    EXPECT_THAT(named("pci:bus=16&device=0&function=0&id=0"), ElementsAre(17));
}

TEST_F(ObjectStoreTest, ThePluginHasANameOfItsOwn)
{
    EXPECT_THAT(named("plugin"), ElementsAre(0x0139000000000000));
    EXPECT_THAT(named("Plugin:ID=313"), ElementsAre(0x0139000000000000));
}

TEST_F(ObjectStoreTest, ASerialNumberOrADeviceNamesAdapterAndDrive)
{
    for (const char* name : {"ABC1", "abc1", "nvme0n1", "/dev/nvme0n1", "NVME0N1"})
        EXPECT_THAT(named(name), ElementsAre(16, 17)) << name;
    for (const char* name : {"PhysicalDrive1", "\\\\.\\PhysicalDrive1", ".PhysicalDrive1"})
        EXPECT_THAT(named(name), ElementsAre(32, 33)) << name;
}

TEST_F(ObjectStoreTest, AnUnknownNameGetsAListOfWhatThereIs)
{
    for (const char* name : {"nvme7n1", "", "0x99", "0x", "0xZZ", "/dev/"}) {
        const std::string refusal = refusalOf(name);
        EXPECT_THAT(refusal, HasSubstr("There is no object \"" + std::string(name) + "\"")) << name;
        EXPECT_THAT(refusal,
                    HasSubstr("0x0000000000000010  /dev/nvme0n1  ABC1  PCI:Bus=16&Device=0&Function=0\n"));
    }
}

TEST_F(ObjectStoreTest, SuggestsTheNearestName)
{
    EXPECT_THAT(refusalOf("nvme0n"), HasSubstr("\"nvme0n\". Did you mean \"nvme0n1\"? These are there:\n"));
    EXPECT_THAT(refusalOf("plugn"), HasSubstr("Did you mean \"plugin\"?"));
    EXPECT_THAT(refusalOf("ABC11"), HasSubstr("Did you mean \"ABC1\"?"));
    EXPECT_THAT(refusalOf("PCI:Bus=16&Device=0"), Not(HasSubstr("Did you mean")));
}

TEST_F(ObjectStoreTest, ANameForgesNoLineOfARefusal)
{
    EXPECT_THAT(refusalOf("a\nostrel: all is well\x9B"), HasSubstr("object \"a?ostrel: all is well?\"."));
}

TEST_F(ObjectStoreTest, ANameOfTwoAdaptersIsRefused)
{
    EXPECT_THAT(refusalOf("TWIN"), HasSubstr("More than one adapter goes by \"TWIN\""));
    EXPECT_THAT(named("nvme2n1"), ElementsAre(48, 49));
}

TEST_F(ObjectStoreTest, AnEmptySerialNumberNamesNothing)
{
    const Host::ObjectStore store(HostTest::topologyOf({{16, "", "/dev/nvme0n1"}}));
    EXPECT_THROW(store.named(""), Host::Failure);
}

TEST_F(ObjectStoreTest, KnowsRootsAndChildren)
{
    ASSERT_EQ(m_Store.roots().size(), 1U);
    const PI::CObject& root = *m_Store.roots()[0];
    EXPECT_EQ(root.m_Type, PI::TYPE_PLUGIN);
    EXPECT_EQ(m_Store.childrenOf(root).size(), 3U);
    EXPECT_EQ(m_Store.byId(17)->m_Type, PI::TYPE_PHYSICAL_DRIVE);
    EXPECT_EQ(m_Store.byId(999), nullptr);

    PI::CObject orphan;
    orphan.m_ID = 5;
    orphan.m_Children = {6};
    EXPECT_TRUE(Host::ObjectStore({orphan}).childrenOf(orphan).empty());
}

TEST(ObjectStore, OfTwoObjectsWithOneIdentifierTheFirstIsMeantAlsoInACopy)
{
    std::vector<PI::CObject> objects(2);
    objects[0].m_ID = objects[1].m_ID = 7;
    objects[0].m_Type = PI::TYPE_ADAPTER;
    Host::ObjectStore store{{}};
    EXPECT_EQ(store.byId(7), nullptr);
    store = Host::ObjectStore(objects);
    const Host::ObjectStore copy = store;
    EXPECT_EQ(store.byId(7), &store.objects()[0]);
    EXPECT_EQ(copy.byId(7), &copy.objects()[0]);
}

TEST(IdentifierText, HasSixteenDigits)
{
    EXPECT_EQ(Host::identifierText(0), "0x0000000000000000");
    EXPECT_EQ(Host::identifierText(0x0139000000000001), "0x0139000000000001");
    EXPECT_EQ(Host::identifierText(~0ULL), "0xffffffffffffffff");
}

TEST(TextOf, IsEmptyForAnotherKindOfValue)
{
    PI::CObject object;
    object.m_Properties = {HostTest::property(PI::PROP_PCI_BUS, 1, std::uint64_t{5})};
    EXPECT_EQ(Host::textOf(object, PI::PROP_PCI_BUS), "");
    EXPECT_EQ(Host::textOf(object, PI::PROP_NAME), "");
}

} // namespace
