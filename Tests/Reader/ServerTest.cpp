#include "Connection.h"
#include "FakeController.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include <Reader/Server.h>
#include <malloc.h>
#include <unistd.h>

namespace {

using namespace ReaderTest;
using namespace TLXX::Linux;

std::size_t openDescriptors()
{
    const std::filesystem::directory_iterator folder("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(folder), end(folder)));
}

/** The memory of this process, in pages. */
std::size_t residentPages()
{
    std::size_t size = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    return resident;
}

class ReaderServer : public testing::Test
{
protected:
    ReaderServer()
    {
        const sockaddr_un address = addressOf(Path());
        CDescriptor listener(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
        EXPECT_EQ(::bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(listener.Get(), 1024), 0);
        auto [ours, theirs] = connectedPair(SOCK_DGRAM | SOCK_NONBLOCK);
        m_Announcer = std::move(ours);
        m_Server.emplace(std::move(listener), std::move(theirs), m_Fake->opening());
        m_Thread = std::thread([this] { m_Server->run(); });
    }
    ~ReaderServer() override
    {
        m_Fake->answerAgain();
        m_Server->stop();
        m_Thread.join();
    }

    std::string Path() const { return (m_Folder.Path() / "socket").string(); }

    void Announce() const
    {
        const std::string message("add@/x\0ACTION=add\0SUBSYSTEM=nvme\0", 33);
        EXPECT_EQ(::send(m_Announcer.Get(), message.data(), message.size(), 0), 33);
    }

    TestSupport::CTemporaryFolder m_Folder;
    CDescriptor m_Announcer;
    std::shared_ptr<FakeControllers> m_Fake = std::make_shared<FakeControllers>();
    std::optional<Reader::Server> m_Server;
    std::thread m_Thread;
};

TEST_F(ReaderServer, AnswersEachCommandOfARequest)
{
    const Connection client(Path());
    CReaderRequest request = logPage(3, 77, 512, 16);
    request.m_Commands |= 3U;
    request.m_NamespaceId = 1;
    client.send(request);
    std::vector<std::pair<std::uint32_t, std::uint32_t>> lengths;
    for (int i = 0; i < 3; ++i) {
        const CReaderAnswer answer = client.answer();
        EXPECT_EQ(answer.m_Sequence, 77U);
        EXPECT_EQ(answer.m_Status, 0U);
        lengths.emplace_back(answer.m_Command, answer.m_Length);
    }
    const std::vector<std::pair<std::uint32_t, std::uint32_t>> expected = {{1, 4096}, {2, 4096}, {4, 16}};
    EXPECT_EQ(lengths, expected);
}

TEST_F(ReaderServer, RefusesWhatIsNoRequest)
{
    const Connection client(Path());
    CReaderRequest request = identify(3, 5);
    request.m_Commands = 0x800;
    client.send(request);
    CReaderAnswer refusal = client.answer();
    EXPECT_EQ(refusal.m_Sequence, 5U);
    EXPECT_EQ(refusal.m_Command, 0U);
    EXPECT_EQ(refusal.m_Status, static_cast<std::uint32_t>(EINVAL));
    for (const std::size_t size : {1U, 39U, 41U, 4096U, 60'000U}) {
        client.send(std::vector<std::uint8_t>(size, 0x31));
        refusal = client.answer();
        EXPECT_EQ(refusal.m_Sequence, 0U);
        EXPECT_EQ(refusal.m_Command, 0U);
    }
    client.send(identify(3, 6));
    EXPECT_EQ(client.answer().m_Sequence, 6U) << "the connection is still good";
    EXPECT_EQ(m_Fake->commands(3), 1U);
}

TEST_F(ReaderServer, AnswersRandomPacketsWithAnswersOnly)
{
    std::mt19937 random(11); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same packets every time
    const Connection client(Path());
    for (int i = 0; i < 20'000; ++i) {
        CReaderRequest request = logPage(static_cast<std::uint32_t>(random() % 3), i, 0, 64);
        const auto whole = readerPacket(request);
        std::vector<std::uint8_t> packet(whole.begin(), whole.end());
        for (auto changes = random() % 4; changes > 0; --changes)
            packet[random() % packet.size()] = static_cast<std::uint8_t>(random());
        if (random() % 8 == 0)
            packet.resize(1 + random() % 80);
        const auto taken = parseReaderRequest(packet);
        client.send(packet);
        const int answers = taken ? std::popcount(taken->m_Commands) : 1;
        for (int each = 0; each < answers; ++each) {
            const CReaderAnswer answer = client.answer();
            ASSERT_EQ(answer.m_Sequence, taken ? taken->m_Sequence : readerSequence(packet));
            ASSERT_EQ(answer.m_Command == 0, !taken);
        }
    }
}

TEST_F(ReaderServer, ServesManyClientsAndNoMoreThanItCan)
{
    std::vector<Connection> clients;
    for (std::size_t i = 0; i < Reader::MOST_CLIENTS; ++i) {
        clients.emplace_back(Path());
        clients.back().send(identify(static_cast<std::uint32_t>(i % 5), i));
    }
    for (std::size_t i = 0; i < clients.size(); ++i)
        ASSERT_EQ(clients[i].answer().m_Sequence, i);
    EXPECT_TRUE(Connection(Path()).receive().empty()) << "one too many";
    clients.pop_back();
    // The place is free as soon as the reader has seen that.
    for (bool isServed = false; !isServed;) {
        const Connection next(Path());
        isServed = next.trySend(readerPacket(identify(3, 1))) && !next.receive().empty();
    }
}

TEST_F(ReaderServer, IsNotDelayedByASilentDrive)
{
    m_Fake->hang(3);
    const Connection first(Path());
    const Connection second(Path());
    first.send(identify(3, 1));
    m_Fake->await(3, 1);
    first.send(identify(4, 2));
    second.send(identify(5, 3));
    EXPECT_EQ(first.answer().m_Sequence, 2U);
    EXPECT_EQ(second.answer().m_Sequence, 3U);
    m_Fake->answerAgain();
    EXPECT_EQ(first.answer().m_Sequence, 1U);
}

TEST_F(ReaderServer, IsNotDelayedByAClientThatReadsNothing)
{
    const Connection lazy(Path());
    std::size_t sent = 0;
    for (int refusals = 0; refusals < 100 && sent < 100'000;) {
        if (lazy.trySend(readerPacket(identify(3, 1)))) {
            ++sent;
            continue;
        }
        ++refusals;
        std::this_thread::yield(); // The reader may just be about to take more.
    }
    const Connection client(Path());
    client.send(identify(4, 2));
    EXPECT_EQ(client.answer().m_Sequence, 2U);
    for (; sent > 0; --sent)
        ASSERT_EQ(lazy.answer().m_Sequence, 1U) << "its own answers are not lost";
}

TEST_F(ReaderServer, OutlivesTornConnections)
{
    const std::size_t before = openDescriptors();
    m_Fake->hang(3);
    for (std::uint32_t i = 0; i < 300; ++i) {
        const Connection torn(Path());
        torn.send(logPage(3, i, i * 4, 4));
        torn.send(identify(i, i));
    }
    m_Fake->answerAgain();
    const Connection client(Path());
    client.send(identify(4, 9));
    EXPECT_EQ(client.answer().m_Sequence, 9U);
    // The reader sees the ends in its own time.
    while (openDescriptors() > before + 2)
        std::this_thread::yield();
    EXPECT_LE(m_Fake->commands(3), 20U) << "what nobody waits for is not sent";
}

TEST_F(ReaderServer, UsesNoAnswerFromBeforeAnAnnouncement)
{
    const Connection client(Path());
    client.send(identify(3, 1));
    (void)client.answer();
    Announce();
    client.send(identify(3, 2));
    (void)client.answer();
    EXPECT_EQ(m_Fake->commands(3), 2U);
}

TEST_F(ReaderServer, NeedsNoMoreForManyRequests)
{
    // Three kinds of requests, many at a time: one that memory answers, one with a new offset, and one that
    // is invalid.
    constexpr std::uint64_t batches = 1'500;
    constexpr std::uint64_t together = 30;
    const Connection client(Path());
    std::size_t descriptors = 0;
    std::size_t pages = 0;
    for (std::uint64_t batch = 0; batch < batches; ++batch) {
        if (batch == batches / 5) {
            descriptors = openDescriptors();
            pages = residentPages();
        }
        for (std::uint64_t i = batch * together; i < (batch + 1) * together; ++i) {
            client.send(logPage(3, i, 0, 64));
            client.send(logPage(4, i, static_cast<std::uint32_t>(i * 4), 4));
            client.send(std::vector<std::uint8_t>(7));
        }
        for (std::uint64_t i = 0; i < 3 * together; ++i)
            (void)client.answer();
    }
    EXPECT_EQ(openDescriptors(), descriptors);
    // A sanitizer that has memory of its own keeps what was released for a while.
    const bool isSystems = ::mallinfo2().arena != 0;
    EXPECT_LE(residentPages(), isSystems ? pages + 512 : SIZE_MAX);
}

TEST(ReaderServerOfOne, EndsWithItsClient)
{
    auto [ours, theirs] = connectedPair();
    const auto fake = std::make_shared<FakeControllers>();
    Reader::Server server(std::move(theirs), {}, fake->opening());
    std::thread thread([&] { server.run(); });
    {
        fake->hang(3);
        const Connection client(std::move(ours));
        client.send(identify(3, 1));
        client.send(identify(4, 2));
        EXPECT_EQ(client.answer().m_Sequence, 2U);
    }
    thread.join();
    fake->answerAgain();
}

TEST(ReaderServerOfOne, RefusesOtherSockets)
{
    auto [ours, theirs] = connectedPair(SOCK_STREAM);
    EXPECT_THROW(Reader::Server(std::move(theirs), {}, {}), std::system_error);
    EXPECT_THROW(Reader::Server(CDescriptor(::dup(0)), {}, {}), std::system_error);
}

} // namespace
