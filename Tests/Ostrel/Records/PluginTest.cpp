#include "Records/Plugin.h"

#include <gtest/gtest.h>

namespace {

TEST(PluginRecord, StartsWithoutIdentityAndRelations)
{
    const NAMESPACE_Ostrel::CNVMePlugin plugin;
    EXPECT_EQ(plugin.m_ID, 0U);
    EXPECT_EQ(plugin.m_UpdateCount, 0U);
    EXPECT_TRUE(plugin.m_Parents.empty());
    EXPECT_TRUE(plugin.m_Children.empty());
    static_assert(sizeof(NAMESPACE_Ostrel::CNVMePlugin) == sizeof(PI::CObject));
}

} // namespace
