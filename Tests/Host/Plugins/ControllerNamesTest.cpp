#include "Plugins/ControllerNames.h"

namespace {

TLXX::CControllerState stateOf(const std::string& name, const std::string& disk)
{
    TLXX::CControllerState state;
    state.m_Name = name;
    state.m_DeviceName = disk;
    return state;
}

TEST(ControllerNames, AControllerStandsForItsDiskWhateverThatIsCalled)
{
    // The second path of a drive with two ports.
    const std::vector<TLXX::CControllerState> states = {stateOf("nvme1", "/dev/nvme0n1"),
                                                        stateOf("nvme0", "/dev/nvme4n1")};
    for (const char* name : {"nvme0", "/dev/nvme0", "NVME0"})
        EXPECT_EQ(Host::diskOfController(states, name), "/dev/nvme4n1") << name;
}

TEST(ControllerNames, AnyOtherNameStaysAsItIs)
{
    const std::vector<TLXX::CControllerState> states = {stateOf("nvme0", "/dev/nvme0n1"),
                                                        stateOf("nvme1", "")};
    for (const char* name : {"nvme0n1", "/dev/nvme0n1", "nvme", "nvme1", "nvme00", "0", "", "plugin"})
        EXPECT_EQ(Host::diskOfController(states, name), name);
}

TEST(ControllerNames, AreThoseOfTheDisksWhereOnlyTheseAreNamed)
{
    const std::vector<TLXX::CControllerState> states = {
        stateOf("/dev/nvme12n3", "/dev/nvme12n3"), stateOf("\\\\.\\PhysicalDrive1", "\\\\.\\PhysicalDrive1"),
        stateOf("n1", "n1"), stateOf("", "x")};
    EXPECT_EQ(Host::diskOfController(states, "nvme12"), "/dev/nvme12n3");
    EXPECT_EQ(Host::diskOfController(states, "nvme1"), "nvme1");
    EXPECT_EQ(Host::diskOfController(states, "PhysicalDrive1"), "\\\\.\\PhysicalDrive1");
}

} // namespace
