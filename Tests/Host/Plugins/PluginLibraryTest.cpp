#include "Plugins/PluginLibrary.h"

#include "Base/Failure.h"
#include "Host/Built.h"
#include "Plugins/HostSetup.h"
#include "Support/TemporaryFolder.h"
#include "Support/VirtualClock.h"

#include <PI/ErrorCode.h>
#include <TLX/Event.h>
#include <TLX/LanguageSupport.h>
#include <TLX/Thread.h>
#include <TLX/WaitResult.h>

#include <filesystem>

namespace {

using Host::Ending;
using Host::ExitCode;
using Host::PluginLibrary;
namespace Built = HostTest::Built;
using testing::AllOf;
using testing::HasSubstr;

template<typename Action>
Host::Failure failureOf(const Action& action)
{
    try {
        action();
    } catch (const Host::Failure& failure) {
        return failure;
    }
    return {ExitCode::Done, "nothing failed"};
}

TEST(PluginLibrary, SaysWhyAFileCannotBeLoaded)
{
    const Host::Failure failure = failureOf([] { PluginLibrary plugin("/no/such/plugin.so"); });
    EXPECT_EQ(failure.exitCode(), ExitCode::RequestFailed);
    EXPECT_THAT(failure.what(), AllOf(HasSubstr("/no/such/plugin.so"), HasSubstr("cannot be loaded")));
}

TEST(PluginLibrary, RefusesALibraryThatIsNoPlugin)
{
    EXPECT_THAT(failureOf([] { PluginLibrary plugin(Built::NO_PLUGIN); }).what(),
                HasSubstr("is no plug-in: it does not export \"createIf\""));
}

TEST(PluginLibrary, RefusesAnotherInterfaceVersion)
{
    const Host::Failure failure = failureOf([] { PluginLibrary plugin(Built::WRONG_VERSION_PLUGIN); });
    EXPECT_EQ(failure.exitCode(), ExitCode::RequestFailed);
    EXPECT_THAT(failure.what(), HasSubstr(" has interface version 3, but this program has version 2"));
}

TEST(PluginLibrary, RefusesAPluginThatCannotBeCreated)
{
    EXPECT_THAT(failureOf([] { PluginLibrary plugin(Built::NO_MEMORY_PLUGIN); }).what(),
                HasSubstr("could not be created: 20007 ERR_OUT_OF_MEMORY"));
}

TEST(PluginLibrary, HasTheTextsOfACatalogueBesideItself)
{
    using TLX::Language_Support::CLanguageSupport;
    constexpr std::uint32_t number = 4'711'001;
    const TestSupport::CTemporaryFolder folder;
    const std::filesystem::path original = Built::SECOND_PLUGIN;
    std::filesystem::copy_file(original, folder.Path() / original.filename());
    folder.Write("Second.nls", "4711001 A text of its own\n");
    {
        const PluginLibrary plugin(folder.Path() / original.filename());
        EXPECT_EQ(CLanguageSupport::Find(number), "A text of its own");
    }
    EXPECT_EQ(CLanguageSupport::Find(number), std::nullopt) << "it goes with its plug-in";
    const TestSupport::CTemporaryFolder shared;
    shared.Write("Second.nls", "4711001 A text of the host's\n");
    CLanguageSupport::SetFolder(shared.Path());
    {
        const PluginLibrary plugin(folder.Path() / original.filename());
        EXPECT_EQ(CLanguageSupport::Find(number), "A text of the host's");
    }
    CLanguageSupport::SetFolder({});
}

TEST(PluginLibrary, NamesTheRequestThatFailed)
{
    PluginLibrary plugin(Built::REFUSING_PLUGIN);
    EXPECT_TRUE(plugin.initialize().empty());
    const Host::Failure failure = failureOf([&] { plugin.topology(); });
    EXPECT_EQ(failure.exitCode(), ExitCode::RequestFailed);
    EXPECT_EQ(failure.result()->m_Request, 4);
    EXPECT_EQ(failure.result()->m_Code, PI::ERR_GENERAL_FAILURE);
    EXPECT_THAT(failure.what(), HasSubstr(" refused request 4 (GetTopology) with 20000 ERR_GENERAL_FAILURE"));
}

TEST(PluginLibrary, NamesThePluginAndTheRequestThatThrew)
{
    PluginLibrary plugin(Built::THROWING_PLUGIN);
    const Host::Failure failure = failureOf([&] { plugin.initialize(); });
    EXPECT_EQ(failure.exitCode(), ExitCode::RequestFailed);
    EXPECT_EQ(failure.what(),
              "The plug-in " + plugin.file() + " failed in request 1 (Initialize): bad?luck.");
}

TEST(PluginLibrary, ReleasesAPluginThatEndedHoweverLate)
{
    TestSupport::CVirtualClock clock;
    {
        PluginLibrary plugin(Built::SLOW_PLUGIN);
        clock.OnSleep([&] { clock.Advance(25'200); });
        EXPECT_EQ(plugin.deInitialize(), Ending::ByItself);
        clock.OnSleep({});
    }
    EXPECT_EQ(clock.Sleeps().size(), 2U) << "at its end, and when it was released";
}

TEST(PluginLibrary, LeavesAPluginAloneWhoseThreadCouldNotBeEnded)
{
    TestSupport::CVirtualClock clock;
    TLX::Threading::CEvent end;
    ASSERT_EQ(end.Init(false, true), TLX::Threading::WaitResult::Taken);
    TLX::Threading::CThread thread([&end] { (void)end.Wait(); });
    {
        PluginLibrary plugin(Built::SLOW_PLUGIN);
        clock.OnSleep([&thread] { thread.Cancel(); });
        EXPECT_EQ(plugin.deInitialize(), Ending::NotYet);
    }
    // Otherwise its release would have slept once more.
    EXPECT_EQ(clock.Sleeps().size(), 1U);
    end.Set();
    EXPECT_EQ(thread.Wait(), TLX::Threading::WaitResult::Taken);
    clock.OnSleep({});
    EXPECT_EQ(PluginLibrary(Built::SLOW_PLUGIN).deInitialize(), Ending::ByItself) << "its end is seen";
}

TEST(PluginLibrary, TellsThatAThreadOfThePluginWasEndedByForce)
{
    TestSupport::CVirtualClock clock;
    TLX::Threading::CEvent end;
    ASSERT_EQ(end.Init(true, true), TLX::Threading::WaitResult::Taken);
    PluginLibrary plugin(Built::SLOW_PLUGIN);
    clock.OnSleep([&end] {
        TLX::Threading::CThread thread([&end] { (void)end.Wait(); });
        thread.Cancel();
        EXPECT_EQ(thread.Wait(), TLX::Threading::WaitResult::Taken);
    });
    EXPECT_EQ(plugin.deInitialize(), Ending::ByForce);
    clock.OnSleep({});
}

class RealPluginTest : public testing::Test
{
protected:
    std::unique_ptr<Host::HostSetup> setupOf(const std::string& fleet)
    {
        return std::make_unique<Host::HostSetup>(Host::HostFolders{Built::SHARE, m_Folder.Path()},
                                                 Host::TraceOptions{}, m_Folder.Write("fleet.json", fleet),
                                                 [](const std::string&) { ADD_FAILURE(); });
    }

    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(RealPluginTest, AnswersWithTheFleetInPlaceOfTheMachine)
{
    const auto setup = setupOf(R"({"controllers": [{"location": "0000:05:00.0",
        "identify": {"vendorId": 1, "model": "M", "serial": "SER"}, "namespace": {"blocks": 4096},
        "health": {"temperature": 30}}]})");
    PluginLibrary plugin(Built::PLUGIN);
    EXPECT_EQ(plugin.version(), 2U);
    EXPECT_EQ(plugin.module(), 313U);
    const std::vector<PI::CAdapterID> adapters = plugin.initialize();
    ASSERT_EQ(adapters.size(), 1U);
    EXPECT_EQ(adapters[0].m_Bus, 5U);
    EXPECT_EQ(plugin.topology().size(), 3U);
}

TEST_F(RealPluginTest, AnEmptyFleetIsNoHardware)
{
    const auto setup = setupOf(R"({"controllers": []})");
    PluginLibrary plugin(Built::PLUGIN);
    const Host::Failure failure = failureOf([&] { plugin.initialize(); });
    EXPECT_EQ(failure.exitCode(), ExitCode::NoHardware);
    EXPECT_THAT(failure.what(),
                HasSubstr(" refused request 1 (Initialize) with 20001 ERR_NO_SUPPORTED_HARDWARE"));
}

TEST_F(RealPluginTest, TheMachineIsBackWithTheSetupGone)
{
    setupOf(R"({"controllers": []})");
    EXPECT_EQ(TLXX::deviceBackend(), nullptr);
}

TEST(RequestName, CoversEveryRequest)
{
    EXPECT_EQ(Host::requestName(1), "Initialize");
    EXPECT_EQ(Host::requestName(4), "GetTopology");
    EXPECT_EQ(Host::requestName(10), "ExecuteOperation");
    EXPECT_EQ(Host::requestName(0), "unknown");
    EXPECT_EQ(Host::requestName(11), "unknown");
}

} // namespace
