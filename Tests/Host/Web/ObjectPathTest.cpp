#include "Web/ObjectPath.h"

#include "Web/Target.h"

#include <gtest/gtest.h>

namespace {

using namespace Host::Web;

TEST(ObjectPathTest, APathNamesObjectAndProperty)
{
    const auto name = propertyAt("/api/v1/objects/a/b/properties/c d");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->m_Object, "a/b");
    EXPECT_EQ(name->m_Property, "c d");
    EXPECT_EQ(parseTarget(propertyPath(*name))->m_Path, "/api/v1/objects/a/b/properties/c d");
    for (const char* path : {"/api/v1/objects/a/properties/", "/api/v1/objects//properties/a",
                             "/api/v1/objects/a", "/api/v1/object/a/properties/b", ""})
        EXPECT_FALSE(propertyAt(path)) << path;
}

TEST(ObjectPathTest, AnyNameSurvivesThePath)
{
    EXPECT_EQ(parseTarget(objectPath("/dev/a b?"))->m_Path, "/api/v1/objects//dev/a b?");
}

} // namespace
