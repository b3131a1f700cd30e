#include "Commands/ServiceCommands.h"

#include "Commands/ListCommand.h"
#include "Host/Catalogue.h"
#include "Host/Commands_Linux/RunningService.h"
#include "Host/FakeOutput.h"
#include "Journal/Store.h"
#include "Support/TemporaryFolder.h"

#include <TLX/Clock.h>
#include <TLX/Linux/Descriptor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <thread>

#include <sys/socket.h>
#include <sys/un.h>

namespace {

using HostTest::ChangingFleet;
using HostTest::ProgramResult;
using HostTest::RunningProgram;
using HostTest::RunningService;
using HostTest::runProgram;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;

/** Commands beside a service that keeps their data folder. */
class ServiceCommandsTest : public testing::Test
{
protected:
    ServiceCommandsTest() { m_Fleet.set({ChangingFleet::drive("S1", 1)}); }

    std::vector<std::string> words(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> all = {"--simulate", m_Fleet.file(), "--data", m_Data.Path().string()};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    static void awaitDrive(const RunningService& service)
    {
        service.await([&] { return service.get("/api/v1/drives").m_Status == 200; });
    }

    ChangingFleet m_Fleet;
    TestSupport::CTemporaryFolder m_Data;
};

TEST_F(ServiceCommandsTest, SetAsksTheServiceSoThatItTakesEffectAtOnce)
{
    RunningService service(words());
    awaitDrive(service);
    const ProgramResult text = runProgram(words({"set", "plugin", "pollinterval", "77"}));
    EXPECT_EQ(text.m_ExitCode, 0) << text.m_Errors;
    EXPECT_THAT(text.m_Output, HasSubstr(" is now 77 s."));
    service.await([&] { return service.document("/api/v1/status").value("pollSeconds", 0) == 77; });
    const ProgramResult document = runProgram(words({"set", "plugin", "30005", "78", "--json"}));
    const json printed = json::parse(document.m_Output);
    EXPECT_EQ(printed.at("property").at("value"), 78);
    EXPECT_FALSE(printed.contains("text")) << "without a service, set prints no text either";
    const ProgramResult wrong = runProgram(words({"set", "plugin", "pollinterval", "often"}));
    EXPECT_NE(wrong.m_ExitCode, 0);
    EXPECT_THAT(wrong.m_Errors, HasSubstr("\"often\" is no value"));
    EXPECT_EQ(service.end().m_ExitCode, 0);
    EXPECT_THAT(m_Data.Read("Ostrel.ini"), HasSubstr("78"));
}

TEST_F(ServiceCommandsTest, WatchFollowsTheJournalOfTheService)
{
    RunningService service(words());
    awaitDrive(service);
    RunningProgram text(words({"watch"}));
    RunningProgram lines(words({"watch", "--json"}));
    (void)text.awaitMessage("A service watches these drives.");
    (void)lines.awaitMessage("A service watches these drives.");
    m_Fleet.set({ChangingFleet::drive("S1", 1), ChangingFleet::drive("S2", 2)});
    EXPECT_THAT(text.awaitResult("\n"), AllOf(HasSubstr("Information"), HasSubstr("S2")));
    const json entry = json::parse(lines.awaitResult("\n"));
    EXPECT_EQ(entry["kind"], "drive-added");
    EXPECT_EQ(entry["drive"]["serial"], "S2");
    text.send(SIGTERM);
    EXPECT_EQ(text.finish().m_ExitCode, 0);
    EXPECT_EQ(service.end().m_ExitCode, 0);
    EXPECT_THAT(lines.awaitMessage("The service has ended."), HasSubstr("ostrel: "));
    EXPECT_EQ(lines.finish().m_ExitCode, 0);
}

TEST_F(ServiceCommandsTest, WatchBeginsWithWhatIsWrongAlready)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1),
                 ChangingFleet::drive("S2", 2, {{"health", {{"criticalWarning", 8}}}})});
    RunningService service(words());
    awaitDrive(service);
    const ProgramResult watched = runProgram(words({"watch", "--for", "0"}));
    EXPECT_EQ(watched.m_ExitCode, 0);
    EXPECT_THAT(watched.m_Errors, HasSubstr("Now: CRITICAL, "));
    EXPECT_THAT(watched.m_Errors,
                HasSubstr("(S2): Critical: Media is read-only; 1 of 2 drives healthy. Its"));
}

TEST_F(ServiceCommandsTest, WatchEndsWhenItsTimeIsOver)
{
    RunningService service(words());
    awaitDrive(service);
    EXPECT_EQ(runProgram(words({"watch", "--for", "0"})).m_ExitCode, 0);
}

TEST_F(ServiceCommandsTest, JournalAsksTheServiceWhenItsFileCannotBeRead)
{
    constexpr std::uint64_t hour = 3'600'000;
    {
        // More than the service gives at once.
        std::vector<Host::Journal::Entry> entries(1001);
        for (Host::Journal::Entry& entry : entries)
            entry.m_End = TLX::Misc::now() - 5 * hour;
        entries.back().m_Begin = entries.back().m_End - 2 * hour;
        entries.back().m_Text = "The clock was set.";
        Host::Journal::Store(Host::Journal::serviceFile(m_Data.Path()), [](const std::string&) {
        }).commit({entries, {}});
    }
    RunningService service(words());
    awaitDrive(service);
    m_Fleet.set({ChangingFleet::drive("S1", 1), ChangingFleet::drive("S2", 2)});
    service.await([&] { return service.entries(1001).dump().find("\"S2\"") != std::string::npos; });
    // This folder has no journal, but the service answers at its socket.
    const TestSupport::CTemporaryFolder other;
    std::filesystem::create_symlink(m_Data.Path() / "serve.sock", other.Path() / "serve.sock");
    const auto journal = [&](const TestSupport::CTemporaryFolder& folder, std::vector<std::string> more) {
        more.insert(more.begin(),
                    {"--simulate", m_Fleet.file(), "--data", folder.Path().string(), "journal"});
        return more;
    };
    const std::vector<std::vector<std::string>> manners = {
        {}, {"--json"}, {"--json", "--since", "1h"}, {"--since", "2999-01-01"}};
    for (const std::vector<std::string>& manner : manners) {
        const ProgramResult asked = runProgram(journal(other, manner));
        EXPECT_EQ(asked.m_ExitCode, 0) << asked.m_Errors;
        EXPECT_EQ(asked.m_Output, runProgram(journal(m_Data, manner)).m_Output);
    }
    EXPECT_THAT(runProgram(journal(other, {})).m_Output,
                AllOf(HasSubstr("The clock was set. It happened after"), HasSubstr("S2")));

    RunningProgram follower(journal(other, {"--json", "--follow", "--since", "1h"}));
    const json before = service.entries(1001);
    for (const json& entry : before)
        EXPECT_EQ(json::parse(follower.awaitResult("\n"))["number"], entry["number"]);
    m_Fleet.set(
        {ChangingFleet::drive("S1", 1), ChangingFleet::drive("S2", 2), ChangingFleet::drive("S3", 3)});
    const json entry = json::parse(follower.awaitResult("\n"));
    EXPECT_EQ(entry["drive"]["serial"], "S3");
    EXPECT_EQ(entry["simulated"], true);
    EXPECT_EQ(service.end().m_ExitCode, 0);
    EXPECT_THAT(follower.awaitMessage("The service has ended."), HasSubstr("ostrel: "));
    EXPECT_EQ(follower.finish().m_ExitCode, 0);
}

TEST_F(ServiceCommandsTest, DoctorLooksAtTheService)
{
    const auto finding = [&] {
        const json document = json::parse(runProgram(words({"doctor", "--json"})).m_Output);
        for (const json& check : document.at("checks"))
            if (check["subject"] == "service")
                return check;
        return json();
    };
    EXPECT_THAT(finding()["message"], HasSubstr("none runs"));
    RunningService service(words());
    awaitDrive(service);
    EXPECT_EQ(finding()["result"], "ok");
    EXPECT_THAT(finding()["message"], AllOf(HasSubstr("serve.sock since 20"), HasSubstr("1 drive healthy")));
    EXPECT_EQ(service.end().m_ExitCode, 0);
}

TEST_F(ServiceCommandsTest, DoctorNamesASocketThatDoesNotAnswer)
{
    const std::string path = (m_Data.Path() / "serve.sock").string();
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    path.copy(place.sun_path, sizeof place.sun_path - 1);
    const TLX::Linux::CDescriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(listener.Get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    ASSERT_EQ(listen(listener.Get(), 1), 0);
    std::thread hanger([&] {
        // The first connection only looks whether somebody listens.
        for (int connection = 0; connection < 2; ++connection)
            (void)TLX::Linux::CDescriptor(accept(listener.Get(), nullptr, nullptr));
    });
    const ProgramResult doctor = runProgram(words({"doctor"}));
    hanger.join();
    EXPECT_THAT(doctor.m_Output, HasSubstr("serve.sock, but does not answer"));
}

TEST_F(ServiceCommandsTest, ShowPrintsTheSameThroughTheService)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1, {{"health", {{"criticalWarning", 4}}}}),
                 ChangingFleet::drive("S2", 2)});
    RunningService service(words());
    awaitDrive(service);
    const std::filesystem::path socket = m_Data.Path() / "serve.sock";
    const Host::Cli::RunningService running = {socket, Host::Web::Client(socket)};
    const auto through = [&](const std::string& object, const std::optional<std::string>& property,
                             bool isJson, bool onTerminal = false) {
        Host::Cli::Options options;
        options.m_Object = object;
        options.m_Property = property;
        options.m_Json = isJson;
        HostTest::FakeOutput results(onTerminal);
        HostTest::FakeOutput messages(false);
        Host::Cli::Terminal terminal(results, messages);
        EXPECT_EQ(Host::Cli::showThroughService(running, options, terminal), Host::ExitCode::Done);
        return results.written();
    };
    const auto here = [&](const std::vector<std::string>& more) { return runProgram(words(more)).m_Output; };
    // Only a host, such as the service, gives the adapter its name.
    const auto belowName = [](const std::string& text) { return text.substr(text.find("\n  Vendor")); };
    EXPECT_EQ(belowName(through("S1", {}, false)), belowName(here({"show", "S1"})));
    const json shown = json::parse(through("S1", {}, true));
    const json expected = json::parse(here({"show", "S1", "--json"}));
    EXPECT_EQ(shown.at("objects").at(1), expected.at("objects").at(1));
    for (const char* part : {"format", "simulated", "facts", "explanations", "endOfLife"})
        EXPECT_EQ(shown.at(part), expected.at(part));
    EXPECT_THAT(here({"show", "S2", "serial number"}),
                testing::EndsWith('\n' + through("S2", "serial number", false)));
    EXPECT_EQ(through("S2", "serial number", true), here({"show", "S2", "serial number", "--json"}));
    EXPECT_THAT(through("S1", {}, false, true), HasSubstr("\x1B["));
    EXPECT_THROW(through("S9", {}, false), Host::Failure);
}

TEST_F(ServiceCommandsTest, OnlyAMissingPermissionLeadsToTheService)
{
    using Host::ExitCode;
    Host::Cli::Options options;
    options.m_Data = m_Data.Path();
    const auto through = [&](ExitCode reason) {
        return Host::Cli::hereOrThroughService(
            options, [&]() -> ExitCode { throw Host::Failure(reason, "Not here."); },
            [](const Host::Cli::RunningService&) { return ExitCode::Done; });
    };
    EXPECT_THROW(through(ExitCode::NoPermission), Host::Failure) << "no service runs";
    RunningService service(words());
    EXPECT_EQ(through(ExitCode::NoPermission), ExitCode::Done);
    EXPECT_THROW(through(ExitCode::NoHardware), Host::Failure);
}

TEST_F(ServiceCommandsTest, ListShowsTheSameFromADocument)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1, {{"health", {{"criticalWarning", 4}}}}),
                 ChangingFleet::drive("S2", 2, {{"fails", {"identifyController"}}})});
    std::vector<Host::Cli::Drive> drives;
    const auto document = nlohmann::ordered_json::parse(runProgram(words({"list", "--json"})).m_Output);
    for (const nlohmann::ordered_json& drive : document.at("drives"))
        drives.push_back(Host::Cli::listedDrive(drive));
    ASSERT_EQ(drives.size(), 2U);
    const HostTest::Catalogue catalogue;
    EXPECT_THAT(runProgram(words({"list"})).m_Output, HasSubstr(Host::Cli::listText(drives, {})));
}

} // namespace
