#include "Web_Linux/Peer.h"

#include <TLX/Linux/Descriptor.h>

#include <gmock/gmock.h>

#include <array>

#include <sys/socket.h>
#include <unistd.h>

namespace {

using Host::Web::mayChange;
using Host::Web::Peer;

constexpr uid_t OWN = 990;
constexpr gid_t GROUP = 980;

TEST(PeerTest, RootAndTheServicesOwnUserMayChange)
{
    EXPECT_TRUE(mayChange({0, {0}}, OWN, std::nullopt));
    EXPECT_TRUE(mayChange({OWN, {1}}, OWN, std::nullopt));
}

TEST(PeerTest, MembersOfTheGroupMayChange)
{
    EXPECT_TRUE(mayChange({1000, {GROUP}}, OWN, GROUP));
    EXPECT_TRUE(mayChange({1000, {1000, 27, GROUP, 1}}, OWN, GROUP));
}

TEST(PeerTest, OthersMayNot)
{
    EXPECT_FALSE(mayChange({1000, {1000, 0, 27}}, OWN, GROUP));
    EXPECT_FALSE(mayChange({1000, {}}, OWN, GROUP));
    EXPECT_FALSE(mayChange({1000, {GROUP, 0}}, OWN, std::nullopt));
    EXPECT_FALSE(mayChange({static_cast<uid_t>(-1), {0}}, OWN, std::nullopt));
}

TEST(PeerTest, TheSystemTellsWhoConnected)
{
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    const TLX::Linux::CDescriptor one(ends[0]);
    const TLX::Linux::CDescriptor other(ends[1]);
    const auto peer = Host::Web::peerOf(one.Get());
    ASSERT_TRUE(peer);
    EXPECT_EQ(peer->m_User, ::geteuid());
    std::vector<gid_t> groups(static_cast<std::size_t>(::getgroups(0, nullptr)));
    ASSERT_GE(::getgroups(static_cast<int>(groups.size()), groups.data()), 0);
    groups.push_back(::getegid());
    EXPECT_THAT(peer->m_Groups, testing::UnorderedElementsAreArray(groups));
    EXPECT_FALSE(Host::Web::peerOf(-1));
}

TEST(PeerTest, GroupsAreFoundByTheirName)
{
    EXPECT_EQ(Host::Web::findGroup("root"), std::optional<gid_t>(0));
    EXPECT_FALSE(Host::Web::findGroup("there-is-no-such-group"));
}

} // namespace
