#include "Drives/FileEdits.h"

#include "Drives/SimulatedFleet.h"
#include "Support/TemporaryFolder.h"

#include <TLX/Event.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>

namespace {

using TLX::Threading::WaitResult::Taken;

class FileEditsTest : public testing::Test
{
protected:
    FileEditsTest()
    {
        m_Folder.Write("fleet.json", R"({"controllers": []})");
        EXPECT_EQ(m_Heard.Init(false, false), Taken);
    }

    std::function<void()> hear()
    {
        return [this] {
            ++m_Count;
            m_Heard.Set();
        };
    }

    TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_File = m_Folder.Path() / "fleet.json";
    std::atomic<int> m_Count = 0;
    TLX::Threading::CEvent m_Heard;
};

TEST_F(FileEditsTest, AreToldWhenTheFileIsWrittenAndWhenAnotherTakesItsPlace)
{
    const auto announcements = Host::announceEdits(m_File, hear());
    ASSERT_TRUE(announcements);
    m_Folder.Write("fleet.json", "{}");
    EXPECT_EQ(m_Heard.Wait(), Taken);
    std::filesystem::rename(m_Folder.Write("next", "{}"), m_File);
    EXPECT_EQ(m_Heard.Wait(), Taken);
}

TEST_F(FileEditsTest, OfOtherFilesAreNotTold)
{
    auto announcements = Host::announceEdits(m_File, hear());
    ASSERT_TRUE(announcements);
    m_Folder.Write("fleet.json.new", "{}");
    m_Folder.Write("fleet", "{}");
    // Messages come in order, so those about the other files have been read by now.
    m_Folder.Write("fleet.json", "{}");
    EXPECT_EQ(m_Heard.Wait(), Taken);
    announcements.reset();
    EXPECT_EQ(m_Count, 1);
}

TEST_F(FileEditsTest, OfAFileNamedWithoutAFolderAreLookedForInTheCurrentOne)
{
    EXPECT_TRUE(Host::announceEdits("fleet.json", [] {}));
}

TEST_F(FileEditsTest, CannotBeHadOfAFolderThatIsNotThere)
{
    EXPECT_FALSE(Host::announceEdits(m_Folder.Path() / "none" / "fleet.json", [] {}));
}

TEST_F(FileEditsTest, AreAnnouncedByTheSimulatedFleet)
{
    Host::SimulatedFleet fleet(m_File, [](const std::string&) {});
    const auto announcements = fleet.Subscribe(hear());
    ASSERT_TRUE(announcements);
    m_Folder.Write("fleet.json", "{}");
    EXPECT_EQ(m_Heard.Wait(), Taken);
}

} // namespace
