#include "Drives_Linux/ReaderClient.h"

#include "Support/VirtualClock.h"

#include <TLXX/Linux/DiskOwner.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <span>
#include <system_error>
#include <thread>

#include <sys/socket.h>

namespace {

using Host::ReaderClient;
using TLX::Linux::CDescriptor;
using TLXX::CDriveAddress;
using TLXX::CDriveAnswer;
using TLXX::CDriveCommand;
using TLXX::EQuery;
using TLXX::Linux::CReaderAnswer;
using TLXX::Linux::CReaderRequest;

constexpr CDriveCommand CONTROLLER{EQuery::IdentifyController, 0};
constexpr CDriveCommand NAMESPACE{EQuery::IdentifyNamespace, 0};
constexpr CDriveCommand HEALTH{EQuery::SmartHealthLog, 0};
constexpr CDriveCommand TEMPERATURES{EQuery::VendorLog, 0xC5};
constexpr CDriveCommand NAME{EQuery::VendorLog, 0xDD};
constexpr std::uint32_t HEALTH_BIT = 1U << 3U;
constexpr std::uint32_t TEMPERATURES_BIT = 1U << 8U;
constexpr std::uint32_t NAME_BIT = 1U << 10U;

CDriveAddress drive(std::uint32_t controller, std::uint32_t namespaceId = 1)
{
    return {"/dev/nvme" + std::to_string(controller) + "n1",
            TLXX::Linux::CDiskOwner{controller, 40 + controller, namespaceId}.Instance()};
}

class ReaderClientTest : public testing::Test
{
protected:
    CDescriptor Connect()
    {
        ++m_Connections;
        if (m_Refusal != 0)
            throw std::system_error(m_Refusal, std::generic_category());
        std::array<int, 2> ends{};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
        m_Reader = CDescriptor(ends[1]);
        return CDescriptor(ends[0]);
    }

    /** The next request that the reader gets; its protocol is 0 when there is none. */
    CReaderRequest Request() const
    {
        std::array<std::uint8_t, 100> packet{};
        const ssize_t size = ::recv(m_Reader.Get(), packet.data(), packet.size(), MSG_DONTWAIT);
        const auto request =
            size < 0
                ? std::nullopt
                : TLXX::Linux::parseReaderRequest(std::span(packet).first(static_cast<std::size_t>(size)));
        CReaderRequest none;
        none.m_Protocol = 0;
        return request.value_or(none);
    }

    void Answer(const CReaderAnswer& answer, std::size_t length, std::uint8_t byte = 0) const
    {
        const auto head = TLXX::Linux::readerPacket(answer);
        std::vector<std::uint8_t> packet(head.begin(), head.end());
        packet.resize(head.size() + length, byte);
        EXPECT_EQ(::send(m_Reader.Get(), packet.data(), packet.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(packet.size()));
    }

    /** The statuses of the answers that have come, with their commands. */
    std::vector<std::pair<CDriveCommand, std::uint32_t>> Statuses()
    {
        std::vector<std::pair<CDriveCommand, std::uint32_t>> all;
        while (const auto answer = m_Client.Wait(0))
            all.emplace_back(answer->m_Command, answer->m_Status);
        return all;
    }

    TestSupport::CVirtualClock m_Clock;
    int m_Refusal = 0;
    int m_Connections = 0;
    CDescriptor m_Reader;
    ReaderClient m_Client{[this] { return Connect(); }};
};

using Statuses = std::vector<std::pair<CDriveCommand, std::uint32_t>>;

TEST_F(ReaderClientTest, AsksInOneRequest)
{
    m_Client.Submit(drive(3, 7), {CONTROLLER, NAMESPACE, HEALTH, TEMPERATURES, NAME});
    const CReaderRequest request = Request();
    EXPECT_EQ(request.m_Controller, 3U);
    EXPECT_EQ(request.m_Node, 43U);
    EXPECT_EQ(request.m_NamespaceId, 7U);
    EXPECT_EQ(request.m_Commands, 3U | HEALTH_BIT | TEMPERATURES_BIT | NAME_BIT);
    EXPECT_EQ(request.m_Offset, 0U);
    EXPECT_EQ(request.m_Length, 512U);
    EXPECT_EQ(Request().m_Protocol, 0U) << "another request";
    EXPECT_EQ(m_Client.Wait(0), std::nullopt);
}

TEST_F(ReaderClientTest, BringsAnswersAsTheyCome)
{
    m_Client.Submit(drive(3), {CONTROLLER, HEALTH});
    m_Client.Submit(drive(4), {HEALTH});
    const CReaderRequest first = Request();
    const CReaderRequest second = Request();
    Answer({second.m_Sequence, HEALTH_BIT, 0, 512, 0}, 512, 4);
    Answer({first.m_Sequence, HEALTH_BIT, 0x12002, 0, 0}, 0);
    Answer({first.m_Sequence, 1, 0, 4096, 0}, 4096, 3);
    auto answer = m_Client.Wait(0);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->m_Drive, drive(4));
    EXPECT_EQ(answer->m_Command, HEALTH);
    EXPECT_EQ(answer->m_Status, 0U);
    EXPECT_EQ(answer->m_Block, std::vector<std::uint8_t>(512, 4));
    answer = m_Client.Wait(0);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->m_Drive, drive(3));
    EXPECT_EQ(answer->m_Status, 0x12002U);
    EXPECT_TRUE(answer->m_Block.empty());
    answer = m_Client.Wait(0);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->m_Command, CONTROLLER);
    EXPECT_EQ(answer->m_Block, std::vector<std::uint8_t>(4096, 3));
    EXPECT_EQ(m_Client.Wait(0), std::nullopt);
}

TEST_F(ReaderClientTest, KeepsTheOrderOfCommands)
{
    m_Client.Submit(drive(3), {NAME, CONTROLLER, HEALTH});
    EXPECT_EQ(Request().m_Commands, NAME_BIT);
    EXPECT_EQ(Request().m_Commands, 1U | HEALTH_BIT);
}

TEST_F(ReaderClientTest, FailsWhatNoReaderCanAnswer)
{
    m_Client.Submit({"/dev/nvme3n1", "somewhere else"}, {CONTROLLER});
    m_Client.Submit(drive(3), {{EQuery::VendorLog, 0x07}});
    EXPECT_EQ(Statuses(),
              (::Statuses{{CONTROLLER, TLXX::STATUS_NO_DEVICE}, {{EQuery::VendorLog, 0x07}, EOPNOTSUPP}}));
    EXPECT_EQ(m_Connections, 0);
}

TEST_F(ReaderClientTest, ReportsWhatADeadReaderOwes)
{
    m_Client.Submit(drive(3), {CONTROLLER, HEALTH});
    m_Client.Submit(drive(4), {HEALTH});
    m_Reader = {};
    EXPECT_EQ(Statuses(), (::Statuses{{CONTROLLER, ECONNRESET}, {HEALTH, ECONNRESET}, {HEALTH, ECONNRESET}}));
    EXPECT_EQ(Statuses(), ::Statuses());
    EXPECT_EQ(m_Connections, 1);
}

TEST_F(ReaderClientTest, AsksTheNextReaderForWhatTheFormerOneOwes)
{
    m_Client.Submit(drive(3, 7), {CONTROLLER, NAMESPACE, HEALTH});
    m_Client.Submit(drive(4), {HEALTH});
    Answer({Request().m_Sequence, 1, 0, 4096, 0}, 4096);
    m_Reader = {};
    EXPECT_EQ(Statuses(), (::Statuses{{CONTROLLER, 0}}));
    EXPECT_EQ(m_Connections, 2);
    const CReaderRequest first = Request();
    const CReaderRequest second = Request();
    EXPECT_EQ(first.m_Controller, 3U);
    EXPECT_EQ(first.m_Node, 43U);
    EXPECT_EQ(first.m_NamespaceId, 7U);
    EXPECT_EQ(first.m_Commands, 2U | HEALTH_BIT);
    EXPECT_EQ(first.m_Length, 512U);
    EXPECT_EQ(second.m_Controller, 4U);
    EXPECT_EQ(Request().m_Protocol, 0U) << "another request";
    Answer({first.m_Sequence, HEALTH_BIT, 0, 512, 0}, 512);
    EXPECT_EQ(Statuses(), (::Statuses{{HEALTH, 0}}));

    m_Client.Submit(drive(5), {NAME});
    m_Reader = {};
    EXPECT_EQ(Statuses(), (::Statuses{{NAMESPACE, ECONNRESET}, {HEALTH, ECONNRESET}})) << "asked twice";
    EXPECT_EQ(m_Connections, 3);
    EXPECT_EQ(Request().m_Controller, 5U);
    m_Client.Submit(drive(6), {HEALTH});
    m_Reader = {};
    EXPECT_EQ(Statuses(), (::Statuses{{NAME, ECONNRESET}, {HEALTH, ECONNRESET}}));
    EXPECT_EQ(m_Connections, 3) << "this one never answered";
}

TEST_F(ReaderClientTest, NoticesTheEndOfAnIdleReaderAtTheNextCommand)
{
    m_Client.Submit(drive(3), {HEALTH});
    Answer({Request().m_Sequence, HEALTH_BIT, 0, 512, 0}, 512);
    EXPECT_EQ(Statuses(), (::Statuses{{HEALTH, 0}}));
    m_Reader = {};
    m_Client.Submit(drive(3), {HEALTH});
    m_Client.Submit(drive(4), {HEALTH});
    EXPECT_EQ(m_Connections, 2);
    Answer({Request().m_Sequence, HEALTH_BIT, 0, 512, 0}, 512);
    Answer({Request().m_Sequence, HEALTH_BIT, 0, 512, 0}, 512);
    EXPECT_EQ(Statuses(), (::Statuses{{HEALTH, 0}, {HEALTH, 0}}));
}

TEST_F(ReaderClientTest, FailsWhatIsOwedWhenThereIsNoNextReader)
{
    m_Client.Submit(drive(3), {CONTROLLER, HEALTH});
    Answer({Request().m_Sequence, 1, 0, 4096, 0}, 4096);
    m_Refusal = ECONNREFUSED;
    m_Reader = {};
    EXPECT_EQ(Statuses(), (::Statuses{{CONTROLLER, 0}, {HEALTH, ECONNREFUSED}}));
    m_Client.Submit(drive(3), {HEALTH});
    EXPECT_EQ(Statuses(), (::Statuses{{HEALTH, ECONNREFUSED}}));
    EXPECT_EQ(m_Connections, 2) << "it did not wait";
}

TEST_F(ReaderClientTest, ConnectsAgainWithGrowingPatience)
{
    m_Client.Submit(drive(3), {HEALTH});
    m_Reader = {};
    EXPECT_EQ(Statuses().size(), 1U);
    m_Refusal = ECONNREFUSED;
    for (const std::uint64_t delay : {100U, 200U, 400U, 800U, 1600U, 3200U, 6400U, 10'000U, 10'000U}) {
        m_Clock.Advance(delay - 1);
        const int before = m_Connections;
        m_Client.Submit(drive(3), {HEALTH});
        EXPECT_EQ(m_Connections, before) << delay;
        m_Clock.Advance(1);
        m_Client.Submit(drive(3), {HEALTH});
        EXPECT_EQ(m_Connections, before + 1) << delay;
        EXPECT_EQ(Statuses().back(), (std::pair<CDriveCommand, std::uint32_t>{HEALTH, ECONNREFUSED}));
    }
    m_Refusal = 0;
    m_Clock.Advance(10'000);
    m_Client.Submit(drive(3), {HEALTH});
    const std::uint64_t sequence = Request().m_Sequence;
    EXPECT_NE(sequence, 0U);
    Answer({sequence, HEALTH_BIT, 0, 512, 0}, 512);
    EXPECT_EQ(Statuses(), (::Statuses{{HEALTH, 0}}));
    m_Reader = {};
    m_Client.Submit(drive(3), {HEALTH});
    m_Reader = {};
    EXPECT_EQ(Statuses(), (::Statuses{{HEALTH, ECONNRESET}}));
    m_Clock.Advance(100);
    m_Client.Submit(drive(3), {HEALTH});
    EXPECT_NE(Request().m_Protocol, 0U) << "after an answer the patience is small again";
}

TEST_F(ReaderClientTest, AddsTheZerosAtTheEndOfABlock)
{
    for (const std::size_t sent : {0U, 1U, 200U, 511U}) {
        m_Client.Submit(drive(3), {HEALTH});
        Answer({Request().m_Sequence, HEALTH_BIT, 0, static_cast<std::uint32_t>(sent), 0}, sent, 7);
        const auto answer = m_Client.Wait(0);
        ASSERT_TRUE(answer);
        std::vector<std::uint8_t> expected(sent, 7);
        expected.resize(512);
        EXPECT_EQ(answer->m_Block, expected);
    }
}

TEST_F(ReaderClientTest, TrustsNoReaderThatAnswersWhatNobodyAsked)
{
    const std::vector<std::pair<CReaderAnswer, std::size_t>> wrong = {
        {{1000, HEALTH_BIT, 0, 512, 0}, 512}, // another sequence
        {{0, 1, 0, 4096, 0}, 4096},           // another command
        {{0, HEALTH_BIT, 0, 516, 0}, 516},    // more than was asked for
        {{0, HEALTH_BIT, 0, 512, 0}, 511},    // damaged
        {{0, 0, EINVAL, 0, 0}, 0},            // a refusal
    };
    for (auto [answer, length] : wrong) {
        m_Client.Submit(drive(3), {HEALTH});
        answer.m_Sequence += Request().m_Sequence;
        Answer(answer, length);
        EXPECT_EQ(Statuses(), (::Statuses{{HEALTH, ECONNRESET}})) << answer.m_Sequence;
        m_Clock.Advance(10'000);
    }
    m_Client.Submit(drive(3), {HEALTH});
    const std::uint64_t sequence = Request().m_Sequence;
    Answer({sequence, HEALTH_BIT, 0, 512, 0}, 512);
    Answer({sequence, HEALTH_BIT, 0, 512, 0}, 512);
    m_Client.Submit(drive(4), {HEALTH});
    const int before = m_Connections;
    EXPECT_EQ(Statuses(), (::Statuses{{HEALTH, 0}})) << "the same answer twice";
    EXPECT_EQ(m_Connections, before + 1);
}

TEST_F(ReaderClientTest, SendsMoreThanTheSystemTakesAtOnce)
{
    constexpr std::uint32_t drives = 3000;
    for (std::uint32_t i = 0; i < drives; ++i)
        m_Client.Submit(drive(i), {HEALTH});
    std::uint32_t answers = 0;
    for (std::uint32_t i = 0; i < drives;) {
        for (CReaderRequest request = Request(); request.m_Protocol != 0; request = Request(), ++i)
            if (i % 10 == 0)
                Answer({request.m_Sequence, HEALTH_BIT, 0x10001, 0, 0}, 0);
        answers += static_cast<std::uint32_t>(Statuses().size());
    }
    EXPECT_EQ(answers + Statuses().size(), drives / 10);
}

TEST_F(ReaderClientTest, IsWoken)
{
    m_Client.Wake();
    EXPECT_EQ(m_Client.Wait(UINT64_MAX), std::nullopt) << "a wake before the wait";
    std::thread other([this] { m_Client.Wake(); });
    EXPECT_EQ(m_Client.Wait(UINT64_MAX), std::nullopt);
    other.join();
}

} // namespace
