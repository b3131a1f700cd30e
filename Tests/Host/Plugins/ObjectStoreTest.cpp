#include "Plugins/ObjectStore.h"

#include "Base/Failure.h"
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

    std::string refusalOf(std::string_view name)
    {
        try {
            m_Store.named(name);
        } catch (const Host::Failure& failure) {
            m_ExitCode = failure.exitCode();
            return failure.what();
        }
        return "found";
    }

    Host::ExitCode m_ExitCode = Host::ExitCode::Done;
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
    EXPECT_THAT(named("nvme-plugin"), ElementsAre(0x0139000000000000));
    EXPECT_THAT(named("Plugin:ID=313"), ElementsAre(0x0139000000000000));
}

TEST_F(ObjectStoreTest, ASerialNumberOrADeviceNamesAdapterAndDrive)
{
    for (const char* name : {"ABC1", "abc1", "nvme0n1", "/dev/nvme0n1", "NVME0N1"})
        EXPECT_THAT(named(name), ElementsAre(16, 17)) << name;
    for (const char* name : {"PhysicalDrive1", "\\\\.\\PhysicalDrive1", ".PhysicalDrive1"})
        EXPECT_THAT(named(name), ElementsAre(32, 33)) << name;
}

TEST_F(ObjectStoreTest, APciAddressNamesAdapterAndDrive)
{
    for (const char* name : {"0000:10:1f.1", "10:1f.1", "0000:10:1F.1", "00000:10:1f.1"})
        EXPECT_THAT(named(name), ElementsAre(16, 17)) << name;
    for (const char* name : {"0001:10:1f.1", "10:1f.0", "10:1f", "0000:10:1f.1 ", ":10:1f.1", "-1:10:1f.1"})
        EXPECT_THAT(refusalOf(name), HasSubstr("There is no object")) << name;
}

TEST_F(ObjectStoreTest, AnAddressWithoutASegmentIsThatOfAnyButHasToTellTheAdapter)
{
    DriveObjects first(16, "A", "/dev/nvme0n1");
    DriveObjects second(32, "B", "/dev/nvme1n1");
    for (const auto& [objects, bus] : {std::pair(&first, 5), std::pair(&second, 5)}) {
        objects->remove(PI::PROP_PCI_SEGMENT);
        objects->remove(PI::PROP_PCI_BUS);
        objects->m_Adapter.m_Properties.push_back(
            HostTest::property(PI::PROP_PCI_BUS, 1, static_cast<std::uint64_t>(bus)));
    }
    first.m_Adapter.m_Properties.push_back(HostTest::property(PI::PROP_PCI_SEGMENT, 1, std::uint64_t{0}));
    second.m_Adapter.m_Properties.push_back(
        HostTest::property(PI::PROP_PCI_SEGMENT, 1, std::uint64_t{0x10000}));
    m_Store = Host::ObjectStore(HostTest::topologyOf({first, second}));
    EXPECT_THAT(named("10000:05:1f.1"), ElementsAre(32, 33));
    EXPECT_THAT(refusalOf("05:1f.1"), HasSubstr("More than one object has the name \"05:1f.1\""));
    m_Store = Host::ObjectStore(HostTest::topologyOf({second}));
    EXPECT_THAT(named("05:1f.1"), ElementsAre(32, 33));
}

TEST_F(ObjectStoreTest, ALocationThatWasNotFoundIsNoAddress)
{
    DriveObjects lost(0, "A", "/dev/nvme0n1");
    for (const std::uint32_t id : {PI::PROP_PCI_DEVICE, PI::PROP_PCI_FUNCTION}) {
        lost.remove(id);
        lost.m_Adapter.m_Properties.push_back(HostTest::property(id, 1, std::uint64_t{0}));
    }
    m_Store = Host::ObjectStore(HostTest::topologyOf({lost}));
    EXPECT_THAT(refusalOf("0000:00:00.0"), HasSubstr("There is no object"));
}

TEST_F(ObjectStoreTest, AnUnknownNameGetsAListOfWhatThereIs)
{
    for (const char* name : {"nvme7n1", "", "0x99", "0x", "0xZZ", "/dev/"}) {
        const std::string refusal = refusalOf(name);
        EXPECT_THAT(refusal, HasSubstr("There is no object \"" + std::string(name) + "\"")) << name;
        EXPECT_THAT(refusal,
                    HasSubstr("0x0000000000000010  /dev/nvme0n1  ABC1  PCI:Bus=16&Device=0&Function=0\n"));
        EXPECT_EQ(m_ExitCode, Host::ExitCode::NoSuchObject);
    }
}

TEST_F(ObjectStoreTest, SuggestsTheNearestName)
{
    EXPECT_THAT(refusalOf("nvme0n"), HasSubstr("\"nvme0n\". Did you mean \"nvme0n1\"? These exist:\n"));
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
    EXPECT_THAT(refusalOf("TWIN"), HasSubstr("More than one object has the name \"TWIN\""));
    EXPECT_EQ(m_ExitCode, Host::ExitCode::WrongUsage);
    EXPECT_THAT(named("nvme2n1"), ElementsAre(48, 49));
}

TEST_F(ObjectStoreTest, ADriveWithoutAnAdapterGoesByItsSerialNumberToo)
{
    std::vector<PI::CObject> objects = HostTest::topologyOf({{16, "ABC1", "/dev/nvme0n1"}});
    PI::CObject strange;
    strange.m_ID = 0x1267000000000001;
    strange.m_Type = PI::TYPE_PHYSICAL_DRIVE;
    strange.m_Properties = {HostTest::property(PI::PROP_SERIAL_NUMBER, 1, "STRANGE")};
    objects.push_back(strange);
    m_Store = Host::ObjectStore(objects);
    EXPECT_THAT(named("strange"), ElementsAre(0x1267000000000001));
    EXPECT_THAT(named("ABC1"), ElementsAre(16, 17));
    strange.m_ID = 0x1267000000000002;
    strange.m_Children = {0x1267000000000001};
    objects.push_back(strange);
    m_Store = Host::ObjectStore(objects);
    EXPECT_THAT(named("STRANGE"), ElementsAre(0x1267000000000002, 0x1267000000000001));
}

TEST_F(ObjectStoreTest, AnAdapterIsWhereTheSystemHasItsController)
{
    DriveObjects moved(16, "A", "/dev/nvme0n1");
    DriveObjects stranger(32, "B", "");
    TLXX::CControllerState state;
    state.m_DeviceName = "/dev/nvme0n1";
    state.m_Location = TLXX::CPciLocation{0x10000, 0xe1, 0, 0};
    TLXX::CControllerState withoutDisk;
    withoutDisk.m_Location = TLXX::CPciLocation{0, 5, 0, 0};
    m_Store = Host::ObjectStore(HostTest::topologyOf({moved, stranger}), {withoutDisk, state});
    const auto& adapters = m_Store.objects();
    EXPECT_EQ(m_Store.addressOf(adapters[1]), state.m_Location);
    EXPECT_EQ(m_Store.controllerOf(adapters[2]), nullptr);
    EXPECT_EQ(m_Store.addressOf(adapters[2]), (TLXX::CPciLocation{0, 32, 0x1f, 1}));
    for (const char* name : {"10000:e1:00.0", "e1:00.0"})
        EXPECT_THAT(named(name), ElementsAre(16, 17)) << name;
    EXPECT_THAT(named("0000:20:1f.1"), ElementsAre(32, 33));
    // The plug-in shows this location when an adapter was not found.
    EXPECT_THAT(refusalOf("0000:10:1f.1"), HasSubstr("There is no object"));
    state.m_Location.reset();
    m_Store = Host::ObjectStore(HostTest::topologyOf({moved}), {state});
    EXPECT_EQ(m_Store.addressOf(m_Store.objects()[1]), std::nullopt);
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

TEST_F(ObjectStoreTest, SharesItsObjectsWithAStoreOfOtherAnswers)
{
    Host::DriveAnswer answer;
    answer.m_DeviceName = "/dev/nvme0n1";
    const Host::ObjectStore other(m_Store, {}, {answer});
    const PI::CObject* const adapter = m_Store.byId(16);
    EXPECT_EQ(other.byId(16), adapter) << "the same object, and no copy";
    EXPECT_EQ(other.answerOf(*adapter), &other.answers().front());
    EXPECT_EQ(m_Store.answerOf(*adapter), nullptr);
    m_Store = Host::ObjectStore({});
    EXPECT_EQ(Host::textOf(*other.byId(16), PI::PROP_SERIAL_NUMBER), "ABC1");
}

TEST_F(ObjectStoreTest, FindsTheAnswerOfAnAdapter)
{
    const auto answerOf = [](const char* device, const char* serial) {
        Host::DriveAnswer answer;
        answer.m_DeviceName = device;
        answer.m_SerialNumber = serial;
        return answer;
    };
    const Host::ObjectStore store(m_Store, {},
                                  {answerOf("/dev/NVME0N1", "ABC1"), answerOf("\\\\.\\PhysicalDrive1", ""),
                                   answerOf("/dev/nvme2n1", "NEXT")});
    EXPECT_EQ(store.answerOf(*store.byId(16)), &store.answers()[0]);
    EXPECT_EQ(store.answerOf(*store.byId(32)), &store.answers()[1]) << "it told no serial number";
    EXPECT_EQ(store.answerOf(*store.byId(48)), nullptr) << "that is the drive after the one that is shown";
    EXPECT_EQ(store.answerOf(*store.byId(0x0139000000000000)), nullptr) << "it has no device";
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
