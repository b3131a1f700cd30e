#include "Web/Access.h"

#include <gmock/gmock.h>

namespace {

using namespace Host::Web;

class AccessTest : public testing::Test
{
protected:
    AccessTest() { m_Request.m_Headers = {{"host", "localhost:9713"}}; }

    /** The status of the refusal; 0 when the request is let in. */
    unsigned refused(Door door, bool isTrustedPeer = false)
    {
        const auto refusal = admit(m_Settings, door, isTrustedPeer, m_Request);
        return refusal ? refusal->m_Status : 0;
    }

    unsigned refusedHost(const std::string& host)
    {
        m_Request.m_Headers["host"] = host;
        return refused(Door::Loopback);
    }

    unsigned refusedToken(Door door, const std::string& authorization)
    {
        m_Request.m_Headers["authorization"] = authorization;
        return refused(door);
    }

    AccessSettings m_Settings{"secret", {"storage.example"}};
    Request m_Request;
};

TEST_F(AccessTest, EveryoneReadsOverLoopback)
{
    EXPECT_EQ(refused(Door::Loopback), 0U);
    EXPECT_FALSE(m_Request.m_MayChange);
    EXPECT_FALSE(m_Request.m_Local);
}

TEST_F(AccessTest, TheTokenLetsReadAndNotChange)
{
    for (const Door door : {Door::Loopback, Door::Network})
        for (const char* right : {"Bearer secret", "bearer secret"}) {
            m_Request.m_MayChange = true;
            EXPECT_EQ(refusedToken(door, right), 0U) << right;
            EXPECT_FALSE(m_Request.m_MayChange);
        }
}

TEST_F(AccessTest, AWrongTokenIsRefusedAtEachDoor)
{
    for (const char* wrong : {"Bearer ", "Bearer", "Bearer secre", "Bearer secret ", "Bearer Secret",
                              "Bearer secrets", "Basic secret", "secret", "Bearer secret, Bearer secret"})
        for (const Door door : {Door::Loopback, Door::Network}) {
            EXPECT_EQ(refusedToken(door, wrong), 401U) << wrong;
            EXPECT_FALSE(m_Request.m_MayChange);
        }
}

TEST_F(AccessTest, AnEmptyTokenIsNoToken)
{
    m_Settings.m_Token.clear();
    EXPECT_EQ(refusedToken(Door::Loopback, "Bearer "), 401U);
    EXPECT_FALSE(m_Request.m_MayChange);
}

TEST_F(AccessTest, OtherMachinesNeedTheTokenForEverything)
{
    EXPECT_EQ(refused(Door::Network), 401U);
    EXPECT_EQ(refusedToken(Door::Network, "Bearer secret"), 0U);
}

TEST_F(AccessTest, OnlyKnownNamesAreLetIn)
{
    for (const char* known : {"localhost", "LOCALHOST:1", "127.0.0.1", "127.0.0.1:9713", "[::1]",
                              "[::1]:9713", "storage.example", "Storage.Example:443"})
        EXPECT_EQ(refusedHost(known), 0U) << known;
    for (const char* unknown :
         {"evil.example", "localhost.evil.example", "evil.example:9713", "127.0.0.1.evil.example",
          "localhost:x", "localhost, localhost", "localhost:1:2", "::1", "10.0.0.1", ":80", " "})
        EXPECT_EQ(refusedHost(unknown), 421U) << unknown;
    EXPECT_EQ(refusedHost(""), 400U);
    m_Request.m_Headers.clear();
    EXPECT_EQ(refused(Door::Loopback), 400U);
}

TEST_F(AccessTest, AStrangeNameIsRefusedEvenWithTheToken)
{
    m_Request.m_Headers = {{"host", "evil.example"}, {"authorization", "Bearer secret"}};
    EXPECT_EQ(refused(Door::Loopback), 421U);
    EXPECT_FALSE(m_Request.m_MayChange);
}

TEST_F(AccessTest, AtTheLocalSocketTheSystemTellsWhoMayChange)
{
    m_Request.m_Headers.clear();
    EXPECT_EQ(refused(Door::Local, false), 0U);
    EXPECT_TRUE(m_Request.m_Local);
    EXPECT_FALSE(m_Request.m_MayChange);
    EXPECT_EQ(refused(Door::Local, true), 0U);
    EXPECT_TRUE(m_Request.m_MayChange);
}

TEST_F(AccessTest, ATrustedPeerIsNoneAtAnotherDoor)
{
    EXPECT_EQ(refused(Door::Loopback, true), 0U);
    EXPECT_FALSE(m_Request.m_MayChange);
}

TEST(EqualInConstantTime, ComparesAllOfBoth)
{
    EXPECT_TRUE(equalInConstantTime("", ""));
    EXPECT_TRUE(equalInConstantTime("abc", "abc"));
    for (const char* other : {"", "a", "ab", "abd", "xbc", "abcabc", "abca"}) {
        EXPECT_FALSE(equalInConstantTime(other, "abc")) << other;
        EXPECT_FALSE(equalInConstantTime("abc", other)) << other;
    }
}

} // namespace
