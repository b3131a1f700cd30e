#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <TLXX/DeviceNotification.h>

#include <nlohmann/json.hpp>

#include <array>
#include <cerrno>
#include <cstddef>
#include <thread>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>

namespace {

using HostTest::ProgramResult;
using HostTest::runProgram;
using HostTest::simulated;
using nlohmann::json;
using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/** What doctor says about the machine's announcements. */
json announcements()
{
    const json document = json::parse(runProgram({"doctor", "--json"}).m_Output);
    for (const json& check : document["checks"])
        if (check["subject"] == "announcements")
            return check;
    return {};
}

/** From now on the system refuses the kernel's messages to this thread and to the programs that it starts. */
void refuseKernelMessages()
{
    std::array filter = {
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, __NR_socket, 0, 3),
        sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args)),
        sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AF_NETLINK, 0, 1),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EAFNOSUPPORT),
        sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    ASSERT_EQ(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

TEST(Doctor, SaysWhetherTheSystemAnnouncesDrives)
{
    EXPECT_EQ(announcements()["result"], TLXX::CDeviceNotification::Available() ? "ok" : "note");
    json refused;
    std::thread([&refused] {
        refuseKernelMessages();
        refused = announcements();
    }).join();
    EXPECT_EQ(refused["result"], "note");
    EXPECT_THAT(refused["message"].get<std::string>(), HasSubstr("watch finds them at its next poll"));
}

TEST(Doctor, FindsNothingWrongWithTheDemonstration)
{
    const ProgramResult result = runProgram(simulated({"doctor"}));
    EXPECT_EQ(result.m_ExitCode, 0) << result.m_Output;
    EXPECT_THAT(result.m_Output, StartsWith("Simulated fleet: "));
    EXPECT_THAT(result.m_Output, HasSubstr("OK       plug-in: "));
    EXPECT_THAT(result.m_Output, HasSubstr("OK       inventory: 7 adapters, 15 objects\n"));
    EXPECT_THAT(result.m_Output, Not(HasSubstr("PROBLEM")));
    EXPECT_THAT(result.m_Output, Not(HasSubstr("announcements")));
}

TEST(Doctor, WorksWithoutDrivesAndWithoutAPlugin)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("empty.json", R"({"controllers": []})");
    const ProgramResult empty = runProgram(simulated({"doctor", "--json"}, fleet));
    EXPECT_EQ(empty.m_ExitCode, 3);
    EXPECT_EQ(json::parse(empty.m_Output)["simulated"], true);
    EXPECT_EQ(json::parse(empty.m_Output)["checks"].back()["subject"], "controllers");
    EXPECT_EQ(json::parse(empty.m_Output)["checks"].back()["result"], "problem");

    const ProgramResult broken = runProgram(simulated({"doctor", "--plugin", "/no/such.so"}));
    EXPECT_EQ(broken.m_ExitCode, 1);
    EXPECT_THAT(broken.m_Output,
                AllOf(HasSubstr("PROBLEM  plug-in: "), HasSubstr("OK       /dev/nvme0n1: ")));
}

TEST(Doctor, NamesDrivesThatDoNotAnswerOrAnswerNonsense)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("fleet.json", R"({"controllers": [
        {"location": "0000:01:00.0"},
        {"location": "0000:02:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "S"}},
        {"location": "0000:03:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "T"},
         "namespace": {"blocks": 0}, "health": {"temperature": 20}}]})");
    const ProgramResult result = runProgram(simulated({"doctor"}, fleet));
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_THAT(
        result.m_Output,
        AllOf(HasSubstr("PROBLEM  nvme0n1: does not answer: the drive answered with status"),
              HasSubstr("PROBLEM  nvme1n1: its namespace was not read"),
              HasSubstr("PROBLEM  nvme1n1: its health log was not read (the drive answered with status"),
              HasSubstr("NOTE     nvme2n1: its namespace contains no blocks"),
              Not(HasSubstr("but is shown at"))));
}

TEST(Doctor, NamesTheVendorLogsThatADriveDidNotGive)
{
    const TestSupport::CTemporaryFolder folder;
    const json logs = {{"0xC5", {{"temperature", 30}, {"offset", 0}}},
                       {"0xCA", {{"attributeAD", 100}, {"attributeEA", 100}}}};
    const auto drive = [&](int bus, int maker, std::vector<std::string> there) {
        json result = {
            {"location", "0000:0" + std::to_string(bus) + ":00.0"},
            {"identify", {{"vendorId", maker}, {"model", "INTEL M"}, {"serial", std::to_string(bus)}}},
            {"namespace", {{"blocks", 204800}}},
            {"health", {{"temperature", 20}}}};
        for (const std::string& log : there)
            result["vendorLogs"][log] = logs[log];
        return result;
    };
    const json drives = {drive(1, 0x8086, {"0xC5", "0xCA"}), drive(2, 0x8086, {"0xCA"}),
                         drive(3, 0x8086, {"0xC5"}), drive(4, 0x144D, {})};
    const std::string fleet = folder.Write("fleet.json", json{{"controllers", drives}}.dump());
    const ProgramResult result = runProgram(simulated({"doctor"}, fleet));
    EXPECT_EQ(result.m_ExitCode, 0) << result.m_Output;
    EXPECT_THAT(
        result.m_Output,
        AllOf(HasSubstr("NOTE     nvme1n1: its log C5h was not read, so nothing tells"),
              HasSubstr("NOTE     nvme2n1: its log CAh was not read, so its wear state is not known")));
    EXPECT_THAT(result.m_Output, Not(AnyOf(HasSubstr("nvme0n1: its log"), HasSubstr("nvme1n1: its log CA"),
                                           HasSubstr("nvme2n1: its log C5"), HasSubstr("nvme3n1: its log"))));
}

} // namespace
