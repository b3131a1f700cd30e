#include <DatabaseORM/Models.h>

#include <gtest/gtest.h>

TEST(Models, StartWithEmptyTextsAndZeroes)
{
    const RaidDataModels::Plugin plugin;
    EXPECT_EQ(plugin.m_ID, 0);
    EXPECT_EQ(plugin.m_ObjectID, 0);
    EXPECT_EQ(plugin.m_PollInterval, 0);
    EXPECT_EQ(plugin.m_Name, "");
    const RaidDataModels::Adapter adapter;
    EXPECT_EQ(adapter.m_AdapterNumber, 0);
    EXPECT_EQ(adapter.m_Present, 0);
    EXPECT_EQ(adapter.m_MediaErrors, "");
    const RaidDataModels::PD drive;
    EXPECT_EQ(drive.m_ID, 0);
    EXPECT_EQ(drive.m_Temperature, "");
}

TEST(Models, AreValues)
{
    RaidDataModels::PD drive;
    drive.m_SerialNumber = "S1";
    RaidDataModels::PD copy = drive;
    copy.m_SerialNumber = "S2";
    EXPECT_EQ(drive.m_SerialNumber, "S1");
    drive = std::move(copy);
    EXPECT_EQ(drive.m_SerialNumber, "S2");
}
