#include "Base/Sqlite.h"
#include "Host/Built.h"
#include "Host/Commands_Linux/RunningService.h"
#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <TLX/Linux/Descriptor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <random>
#include <regex>
#include <thread>

#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace {

using HostTest::ChangingFleet;
using HostTest::ProgramResult;
using HostTest::RunningService;
using HostTest::runProgram;
using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

class ServeProgramTest : public testing::Test
{
protected:
    std::vector<std::string> words() const
    {
        return {"--simulate", m_Fleet.file(), "--data", m_Data.Path().string()};
    }

    /** The kinds of the entries about a drive, in order. */
    static std::vector<std::string> kindsOf(const json& entries, const std::string& serial)
    {
        std::vector<std::string> kinds;
        for (const json& entry : entries)
            if (entry.contains("drive") && entry["drive"].value("serial", "") == serial)
                kinds.push_back(entry["kind"]);
        return kinds;
    }

    static void awaitDrives(const RunningService& service, std::size_t count)
    {
        service.await([&] {
            const HostTest::RawAnswer answer = service.get("/api/v1/drives");
            return answer.m_Status == 200 && json::parse(answer.m_Body).at("drives").size() == count;
        });
    }

    ChangingFleet m_Fleet;
    TestSupport::CTemporaryFolder m_Data;
};

TEST_F(ServeProgramTest, AnswersUntilItIsAskedToEnd)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    RunningService service(words());
    awaitDrives(service, 1);
    const json drives = service.document("/api/v1/drives").at("drives");
    ASSERT_EQ(drives.size(), 1U);
    EXPECT_EQ(drives[0]["serial"], "S1");
    EXPECT_THAT(service.get("/metrics").m_Body, HasSubstr("ostrel_drive_up{drive=\"S1\"} 1"));
    EXPECT_EQ(service.get("/").m_Status, 200U);
    const ProgramResult result = service.end();
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_EQ(result.m_Errors, "");
    EXPECT_EQ(result.m_Output, "");
    EXPECT_FALSE(std::filesystem::exists(m_Data.Path() / "serve.sock"));
}

TEST_F(ServeProgramTest, LeavesNothingOfASimulationWithoutADataFolder)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    const TestSupport::CTemporaryFolder temporary;
    RunningService service({"--simulate", m_Fleet.file()}, {{"TMPDIR", temporary.Path().string()}});
    awaitDrives(service, 1);
    EXPECT_FALSE(std::filesystem::is_empty(temporary.Path()));
    EXPECT_EQ(service.end().m_ExitCode, 0);
    EXPECT_TRUE(std::filesystem::is_empty(temporary.Path()));
}

TEST_F(ServeProgramTest, WaitsForTheFirstDriveAndOutlivesTheLast)
{
    m_Fleet.set({});
    RunningService service(words());
    awaitDrives(service, 0);
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    service.awaitEntry("drive-added", "S1");
    m_Fleet.set({});
    service.awaitEntry("drive-removed", "S1");
    m_Fleet.set({ChangingFleet::drive("S2", 2)});
    service.awaitEntry("drive-added", "S2");
    EXPECT_EQ(service.end().m_ExitCode, 0);
}

TEST_F(ServeProgramTest, EndsWithADriveThatHangs)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1), ChangingFleet::drive("S2", 2)});
    RunningService service(words());
    awaitDrives(service, 2);
    m_Fleet.set({ChangingFleet::drive("S1", 1), ChangingFleet::drive("S2", 2, {{"hangs", true}})});
    service.awaitEntry("does-not-answer", "S2");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(service.end().m_ExitCode, 0);
    // A plug-in ends a worker by force after 25 seconds.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    RunningService second(words());
    const json entries = second.entries();
    EXPECT_THAT(kindsOf(entries, "S2"), testing::ElementsAre("does-not-answer"));
    EXPECT_THAT(entries.dump(), HasSubstr("service-ended"));
    EXPECT_EQ(second.end().m_ExitCode, 0);
}

TEST_F(ServeProgramTest, AnswersAndEndsWhileAPluginNeverReturns)
{
    m_Fleet.set({});
    std::vector<std::string> all = words();
    all.insert(all.end(), {"--plugin", HostTest::Built::SLOW_TO_START_PLUGIN});
    RunningService service(all);
    for (const char* path : {"/", "/metrics", "/api/v1/status", "/api/v1/journal"})
        EXPECT_EQ(service.get(path).m_Status, 200U) << path;
    EXPECT_EQ(service.get("/api/v1/drives").m_Status, 503U);
    const ProgramResult result = service.end();
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_THAT(result.m_Errors, HasSubstr("A plug-in did not end in time"));
    EXPECT_THAT(runProgram({"--data", m_Data.Path().string(), "journal"}).m_Output, HasSubstr("ended"));
}

TEST_F(ServeProgramTest, KeepsItsDataFolderForItself)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    RunningService service(words());
    std::vector<std::string> second = words();
    second.insert(second.end(), {"serve", "--listen", "127.0.0.1:0"});
    const ProgramResult refused = runProgram(second);
    EXPECT_EQ(refused.m_ExitCode, 1);
    EXPECT_THAT(refused.m_Errors, HasSubstr("keeps its data in"));
    EXPECT_EQ(service.end().m_ExitCode, 0);
}

TEST_F(ServeProgramTest, TellsNothingWhenItCannotListen)
{
    m_Fleet.set({});
    const RunningService service(words());
    const TestSupport::CTemporaryFolder other;
    const ProgramResult result =
        runProgram({"--simulate", m_Fleet.file(), "--data", other.Path().string(), "serve", "--listen",
                    service.url().substr(std::string("http://").size())});
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_THAT(result.m_Errors, HasSubstr("Cannot listen on"));
    EXPECT_FALSE(std::filesystem::exists(other.Path() / "Service.db"));
}

TEST_F(ServeProgramTest, LeavesTheWholeJournalInOneFile)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    RunningService service(words());
    awaitDrives(service, 1);
    service.await([&] { return !service.entries().empty(); });
    EXPECT_EQ(service.end().m_ExitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(m_Data.Path() / "Service.db-wal"));
}

TEST_F(ServeProgramTest, NamesWrongSettingsWithFileAndLine)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    const std::string file = m_Data.Write("serve.ini", "# A comment.\nlissen = 127.0.0.1:0\n").string();
    std::vector<std::string> all = words();
    all.emplace_back("serve");
    const ProgramResult wrong = runProgram(all);
    EXPECT_EQ(wrong.m_ExitCode, 2);
    EXPECT_THAT(wrong.m_Errors, HasSubstr(file + ", line 2: There is no setting \"lissen\"."));
    all.insert(all.end(), {"--settings", m_Data.Path() / "none.ini"});
    EXPECT_THAT(runProgram(all).m_Errors, HasSubstr("none.ini cannot be read"));
}

TEST_F(ServeProgramTest, ReadsItsSettingsAgainAndKeepsTheFormerOnesWhenTheyAreWrong)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    RunningService service(words());
    const auto statusFor = [&](const std::string& host) {
        HostTest::RawClient client(service.url());
        client.send("GET /api/v1/status HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n\r\n");
        return client.receive().m_Status;
    };
    EXPECT_NE(statusFor("ostrel.example"), 200U);
    (void)m_Data.Write("serve.ini", "host-names = ostrel.example\n");
    service.program().send(SIGHUP);
    (void)service.program().awaitMessage("The settings were read again.");
    EXPECT_EQ(statusFor("ostrel.example"), 200U);
    (void)m_Data.Write("serve.ini", "host-name =\n");
    service.program().send(SIGHUP);
    EXPECT_THAT(service.program().awaitMessage("keeps its former settings."), HasSubstr("serve.ini, line 1"));
    EXPECT_EQ(statusFor("ostrel.example"), 200U);
    (void)m_Data.Write("serve.ini", "listen = 127.0.0.1:1\n");
    service.program().send(SIGHUP);
    (void)service.program().awaitMessage("\"listen\" has an effect after the next start");
    EXPECT_EQ(service.end().m_ExitCode, 0);
}

TEST_F(ServeProgramTest, KeepsAllFormerSettingsWhenTheTokenCannotBeRead)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    RunningService service(words());
    const std::string listen = "listen = 127.0.0.1:1\n";
    const std::string token = "token-file = " + (m_Data.Path() / "token").string() + "\n";
    (void)m_Data.Write("serve.ini", listen + token);
    service.program().send(SIGHUP);
    EXPECT_THAT(service.program().awaitMessage("keeps its former settings."), Not(HasSubstr("next start")));
    (void)m_Data.Write("token", "0123456789abcdef0123456789abcdef\n");
    service.program().send(SIGHUP);
    // The address is new compared with the settings that were kept.
    (void)service.program().awaitMessage("\"listen\" has an effect after the next start");
    EXPECT_EQ(service.end().m_ExitCode, 0);
}

TEST_F(ServeProgramTest, TellsWhatHappenedWhileItDidNotRun)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1), ChangingFleet::drive("S2", 2)});
    {
        RunningService service(words());
        awaitDrives(service, 2);
        EXPECT_EQ(service.end().m_ExitCode, 0);
    }
    m_Fleet.set({ChangingFleet::drive("S1", 1, {{"identify", {{"firmware", "2"}}}})});
    RunningService service(words());
    service.awaitEntry("drive-removed", "S2");
    service.awaitEntry("firmware-changed", "S1");
    EXPECT_EQ(service.end().m_ExitCode, 0);
}

/** Each entry about the firmware begins where the one before ended, and a drive comes and goes by turns. */
void checkHistory(const json& entries)
{
    std::map<std::string, bool> present;
    std::string firmware; // empty: not known yet
    std::uint64_t number = 0;
    for (const json& entry : entries) {
        EXPECT_EQ(entry["number"], ++number);
        const std::string kind = entry["kind"];
        const std::string serial = entry.contains("drive") ? entry["drive"].value("serial", "") : "";
        if (kind == "drive-added" || kind == "drive-removed") {
            const bool isThere = kind == "drive-added";
            const auto [known, isFirst] = present.insert({serial, isThere});
            EXPECT_TRUE(isFirst || known->second != isThere) << entry;
            known->second = isThere;
        } else if (kind == "firmware-changed") {
            std::smatch words;
            const std::string text = entry["text"];
            ASSERT_TRUE(std::regex_search(text, words, std::regex("from ([0-9]+) to ([0-9]+)")));
            EXPECT_TRUE(firmware.empty() || firmware == words[1]) << entry;
            firmware = words[2];
        }
    }
    EXPECT_EQ(firmware, "21");
}

TEST_F(ServeProgramTest, LosesAndDoublesNothingWhenItIsKilled)
{
    std::mt19937 random(7); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same in every run
    constexpr int lives = 20;
    const auto fleetOf = [](int life) {
        std::vector<json> drives = {
            ChangingFleet::drive("S1", 1, {{"identify", {{"firmware", std::to_string(1 + life)}}}})};
        if (life % 2 == 1)
            drives.push_back(ChangingFleet::drive("S2", 2));
        return drives;
    };
    for (int life = 0; life < lives; ++life) {
        m_Fleet.set(fleetOf(life));
        RunningService service(words());
        m_Fleet.set(fleetOf(life + 1));
        // At a random moment of the start, the first rounds or the commits.
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 400));
        service.program().send(SIGKILL);
        (void)service.program().finish();
    }
    RunningService service(words());
    service.await([&] { return service.entries().dump().find("to 21") != std::string::npos; });
    checkHistory(service.entries());
    EXPECT_EQ(service.end().m_ExitCode, 0);
    for (const char* file : {"Service.db", "Ostrel.db"}) {
        auto connection = Host::Sqlite::Connection::toRead(m_Data.Path() / file);
        auto statement = connection.prepare("PRAGMA integrity_check");
        ASSERT_TRUE(statement.step());
        EXPECT_EQ(statement.text(0), "ok") << file;
    }
}

TEST_F(ServeProgramTest, TellsTheNewsLaterWhenTheJournalIsLocked)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    RunningService service(words());
    awaitDrives(service, 1);
    auto other = std::make_unique<Host::Sqlite::Connection>(
        Host::Sqlite::Connection::toWrite(m_Data.Path() / "Service.db"));
    other->run("BEGIN IMMEDIATE");
    // It comes and goes while nothing can be written.
    m_Fleet.set({ChangingFleet::drive("S1", 1), ChangingFleet::drive("S2", 2)});
    awaitDrives(service, 2);
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    awaitDrives(service, 1);
    EXPECT_TRUE(kindsOf(service.entries(), "S2").empty());
    EXPECT_THAT(service.get("/api/v1/status").m_Body, HasSubstr("Service.db"));
    other->run("ROLLBACK");
    other.reset();
    service.awaitEntry("drive-removed", "S2");
    EXPECT_THAT(kindsOf(service.entries(), "S2"), testing::ElementsAre("drive-added", "drive-removed"));
    EXPECT_EQ(service.end().m_ExitCode, 0);
}

/** While it lives, programs that are started ignore the signal that a file has become too large. */
class LargeFilesOnlyFail
{
public:
    LargeFilesOnlyFail() : m_Former(std::signal(SIGXFSZ, SIG_IGN)) {}
    ~LargeFilesOnlyFail() { (void)std::signal(SIGXFSZ, m_Former); }
    LargeFilesOnlyFail(const LargeFilesOnlyFail&) = delete;
    LargeFilesOnlyFail& operator=(const LargeFilesOnlyFail&) = delete;

private:
    void (*m_Former)(int);
};

TEST_F(ServeProgramTest, TellsTheNewsLaterWhenNothingCanBeWritten)
{
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    const LargeFilesOnlyFail patient;
    RunningService service(words());
    awaitDrives(service, 1);
    const auto limitFiles = [&](rlim_t size) {
        const rlimit limit = {size, RLIM_INFINITY};
        ASSERT_EQ(prlimit(service.program().process(), RLIMIT_FSIZE, &limit, nullptr), 0);
    };
    limitFiles(0);
    m_Fleet.set({ChangingFleet::drive("S1", 1), ChangingFleet::drive("S2", 2)});
    awaitDrives(service, 2);
    m_Fleet.set({ChangingFleet::drive("S1", 1)});
    awaitDrives(service, 1);
    EXPECT_TRUE(service.document("/api/v1/status").at("journal").contains("failure"));
    EXPECT_TRUE(kindsOf(service.entries(), "S2").empty());
    limitFiles(RLIM_INFINITY);
    m_Fleet.set({ChangingFleet::drive("S1", 1), ChangingFleet::drive("S3", 3)});
    service.awaitEntry("drive-added", "S3");
    EXPECT_THAT(kindsOf(service.entries(), "S2"), testing::ElementsAre("drive-added", "drive-removed"));
    EXPECT_EQ(service.end().m_ExitCode, 0);
}

TEST_F(ServeProgramTest, GivesTheServiceManagerSignsOfLifeWhileAPluginHangs)
{
    m_Fleet.set({});
    const std::string path = (m_Data.Path() / "notify").string();
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    path.copy(place.sun_path, sizeof place.sun_path - 1);
    const TLX::Linux::CDescriptor manager(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ASSERT_EQ(bind(manager.Get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    const auto next = [&] {
        pollfd ready{manager.Get(), POLLIN, 0};
        std::array<char, 4096> message{};
        constexpr int minute = 60'000;
        const ssize_t size =
            poll(&ready, 1, minute) == 1 ? recv(manager.Get(), message.data(), message.size(), 0) : 0;
        return std::string(message.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    };
    std::vector<std::string> all = words();
    all.insert(all.end(), {"--plugin", HostTest::Built::SLOW_TO_START_PLUGIN});
    RunningService service(all, {{"NOTIFY_SOCKET", path}, {"WATCHDOG_USEC", "200000"}});
    EXPECT_EQ(next(), "READY=1");
    std::map<std::string, int> messages;
    while (messages["WATCHDOG=1"] < 3)
        ASSERT_LT(++messages[next()], 100);
    EXPECT_THAT(messages, ElementsAre(Pair("STATUS=the drives were not read yet", 1), Pair("WATCHDOG=1", 3)));
    service.program().send(SIGTERM);
    std::string last;
    while ((last = next()) == "WATCHDOG=1") {
    }
    EXPECT_EQ(last, "STOPPING=1");
    EXPECT_EQ(service.program().finish().m_ExitCode, 0);
}

} // namespace
