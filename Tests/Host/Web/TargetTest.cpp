#include "Web/Target.h"

#include "Base/PercentCode.h"

#include <gmock/gmock.h>

namespace {

using Host::Web::parseTarget;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(TargetTest, HasAPathAndParameters)
{
    const auto target = parseTarget("/a%20b/%C3%A4?x=1&y=%26%3D&z&w=a=b");
    ASSERT_TRUE(target);
    EXPECT_EQ(target->m_Path, "/a b/\xC3\xA4");
    EXPECT_THAT(target->m_Query,
                ElementsAre(Pair("w", "a=b"), Pair("x", "1"), Pair("y", "&="), Pair("z", "")));
    EXPECT_THAT(parseTarget("/")->m_Query, IsEmpty());
    EXPECT_THAT(parseTarget("/?")->m_Query, IsEmpty());
}

TEST(TargetTest, PercentSignsAreDecodedOnce)
{
    EXPECT_EQ(parseTarget("/%252e%252E")->m_Path, "/%2e%2E");
    EXPECT_EQ(parseTarget("/%2e%2E/%2F")->m_Path, "/..//");
}

TEST(TargetTest, AWholeAddressHasAHostAndMayHaveNoPath)
{
    const auto target = parseTarget("HTTP://Storage.example:80/a%20b?x=http://y/");
    ASSERT_TRUE(target);
    EXPECT_EQ(target->m_Host, "Storage.example:80");
    EXPECT_EQ(target->m_Path, "/a b");
    EXPECT_THAT(target->m_Query, ElementsAre(Pair("x", "http://y/")));
    for (const char* bare : {"http://[::1]:9713", "http://[::1]:9713?x=1"}) {
        EXPECT_EQ(parseTarget(bare)->m_Host, "[::1]:9713") << bare;
        EXPECT_EQ(parseTarget(bare)->m_Path, "/") << bare;
    }
    EXPECT_THAT(parseTarget("http://a?x=1")->m_Query, ElementsAre(Pair("x", "1")));
    EXPECT_EQ(parseTarget("/http://a/")->m_Host, "");
}

TEST(TargetTest, WhatIsNoTargetIsRefused)
{
    for (const char* wrong : {"",
                              "*",
                              "a",
                              "https://localhost/",
                              "http:/localhost/",
                              "http://",
                              "http:///",
                              "http://?a",
                              "http://a@localhost/",
                              "http://a\x01/",
                              "http://localhost/%00",
                              "http://localhost?a=1&a=2",
                              "?a",
                              "%2Fa",
                              "/%",
                              "/%4",
                              "/%4x",
                              "/%x4",
                              "/%-1",
                              "/% 1",
                              "/%00",
                              "/%0a",
                              "/%1F",
                              "/%7f",
                              "/?a=%00",
                              "/?%=1",
                              "/?a=1&a=2"})
        EXPECT_FALSE(parseTarget(wrong)) << wrong;
}

TEST(TargetTest, AnyTextSurvivesEncodingAndDecoding)
{
    const std::string text = "a b/c?d&e=f%g#h+\xC3\xA4\"'~-._";
    EXPECT_EQ(parseTarget("/" + Host::percentEncoded(text))->m_Path, "/" + text);
}

} // namespace
