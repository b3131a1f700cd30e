#include <TLXX/Linux/ReaderProtocol.h>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

namespace {

using namespace TLXX::Linux;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t HEALTH_LOG = ReaderCommand::firstLogPage << 1U;

/** Identify of controller and namespace, and the health log. */
CReaderRequest usual()
{
    CReaderRequest request;
    request.m_Controller = 3;
    request.m_Node = 4711;
    request.m_Sequence = 0x1122334455667788;
    request.m_Commands = ReaderCommand::identifyController | ReaderCommand::identifyNamespace | HEALTH_LOG;
    request.m_NamespaceId = 1;
    request.m_Length = 512;
    return request;
}

bool isTaken(const CReaderRequest& request)
{
    return parseReaderRequest(readerPacket(request)).has_value();
}

bool isTakenWith(const std::function<void(CReaderRequest&)>& change)
{
    CReaderRequest request = usual();
    change(request);
    return isTaken(request);
}

TEST(ReaderProtocol, HasAFixedLayout)
{
    const Bytes expected = {0x32, 0x52, 0x52, 0x4F, 3,    0,    0,    0,    0x67, 0x12, 0,  0, 0, 0,
                            0,    0,    0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11, 11, 0, 0, 0,
                            1,    0,    0,    0,    0,    0,    0,    0,    0,    2,    0,  0};
    const auto packet = readerPacket(usual());
    EXPECT_EQ(Bytes(packet.begin(), packet.end()), expected);
}

TEST(ReaderProtocol, TakesARequestAsItWasSent)
{
    const auto taken = parseReaderRequest(readerPacket(usual()));
    ASSERT_TRUE(taken);
    EXPECT_EQ(readerPacket(*taken), readerPacket(usual()));
}

TEST(ReaderProtocol, TakesEveryCommandThatItKnows)
{
    for (std::uint32_t bit = 1; bit != 0; bit <<= 1U) {
        CReaderRequest request;
        request.m_Commands = bit;
        request.m_NamespaceId = bit == ReaderCommand::identifyNamespace ? 1 : 0;
        request.m_Length = bit < ReaderCommand::firstLogPage ? 0 : 4;
        EXPECT_EQ(isTaken(request), (bit & 0x7FFU) != 0) << bit;
    }
}

TEST(ReaderProtocol, ReadsTheseLogPagesAndNoOthers)
{
    std::vector<unsigned> pages;
    for (unsigned page = 0; page <= 0xFF; ++page) {
        const auto command = readerLogCommand(static_cast<std::uint8_t>(page));
        if (!command)
            continue;
        pages.push_back(page);
        EXPECT_EQ(readerLogPage(*command), page);
        EXPECT_EQ(*command, ReaderCommand::firstLogPage << (pages.size() - 1));
    }
    EXPECT_EQ(pages, (std::vector<unsigned>{0x01, 0x02, 0x03, 0x06, 0x81, 0xC0, 0xC5, 0xCA, 0xDD}));
}

TEST(ReaderProtocol, RefusesWordsThatItDoesNotKnow)
{
    EXPECT_TRUE(isTakenWith([](CReaderRequest&) {}));
    EXPECT_FALSE(isTakenWith([](CReaderRequest& request) { ++request.m_Protocol; }));
    EXPECT_FALSE(isTakenWith([](CReaderRequest& request) { request.m_Commands = 0; }));
    EXPECT_FALSE(isTakenWith([](CReaderRequest& request) { request.m_Commands |= 0x800; }));
    EXPECT_FALSE(isTakenWith([](CReaderRequest& request) { request.m_Commands |= 0x80000000; }));
}

TEST(ReaderProtocol, RefusesNamespacesThatAreNone)
{
    EXPECT_FALSE(isTakenWith([](CReaderRequest& request) { request.m_NamespaceId = 0; }));
    EXPECT_FALSE(isTakenWith([](CReaderRequest& request) { request.m_NamespaceId = 0xFFFFFFFF; }));
    EXPECT_TRUE(isTakenWith([](CReaderRequest& request) { request.m_NamespaceId = 0xFFFFFFFE; }));
    EXPECT_FALSE(isTakenWith([](CReaderRequest& request) { request.m_Commands = HEALTH_LOG; }))
        << "nobody asks for the namespace";
}

TEST(ReaderProtocol, RefusesPartsThatNoPageHas)
{
    for (const std::uint32_t length : {4U, 8U, 512U, 4092U, 4096U})
        EXPECT_TRUE(isTakenWith([=](CReaderRequest& request) { request.m_Length = length; })) << length;
    for (const std::uint32_t length :
         {0U, 1U, 2U, 3U, 5U, 4095U, 4097U, 4100U, 8192U, 0x80000000U, 0xFFFFFFFCU})
        EXPECT_FALSE(isTakenWith([=](CReaderRequest& request) { request.m_Length = length; })) << length;
    for (const std::uint32_t offset : {0U, 4U, 512U, 0xFFFFFDFCU})
        EXPECT_TRUE(isTakenWith([=](CReaderRequest& request) { request.m_Offset = offset; })) << offset;
    for (const std::uint32_t offset : {1U, 2U, 3U, 511U, 0xFFFFFE00U, 0xFFFFFFFCU, 0xFFFFFFFFU})
        EXPECT_FALSE(isTakenWith([=](CReaderRequest& request) { request.m_Offset = offset; })) << offset;
    const auto identify = [](CReaderRequest& request) { request.m_Commands &= 3U; };
    EXPECT_FALSE(isTakenWith(identify)) << "a length without a page";
    EXPECT_FALSE(isTakenWith([&](CReaderRequest& request) {
        identify(request);
        request.m_Length = 0;
        request.m_Offset = 4;
    })) << "an offset without a page";
    EXPECT_TRUE(isTakenWith([&](CReaderRequest& request) {
        identify(request);
        request.m_Length = 0;
    }));
}

TEST(ReaderProtocol, RefusesEveryOtherSize)
{
    const auto packet = readerPacket(usual());
    Bytes bytes(packet.begin(), packet.end());
    bytes.resize(READER_PACKET + 1);
    for (std::size_t size = 0; size <= bytes.size(); ++size)
        EXPECT_EQ(parseReaderRequest(std::span(bytes).first(size)).has_value(), size == packet.size())
            << size;
}

TEST(ReaderProtocol, FindsTheSequenceOfWhatItRefuses)
{
    CReaderRequest request = usual();
    request.m_Commands = 0;
    const auto packet = readerPacket(request);
    EXPECT_EQ(readerSequence(packet), request.m_Sequence);
    EXPECT_EQ(readerSequence(std::span(packet).first(39)), 0U);
}

/** What the rules say, written again without their code. */
bool isAllowed(const CReaderRequest& request)
{
    if (request.m_Protocol != 0x4F525232 || request.m_Commands < 1 || request.m_Commands > 0x7FF)
        return false;
    if ((request.m_Commands & 2U) != 0 ? request.m_NamespaceId == 0 || request.m_NamespaceId == UINT32_MAX
                                       : request.m_NamespaceId != 0)
        return false;
    if (request.m_Commands < 4)
        return request.m_Offset == 0 && request.m_Length == 0;
    const std::uint64_t end = std::uint64_t{request.m_Offset} + request.m_Length;
    return (request.m_Offset & 3U) == 0 && (request.m_Length & 3U) == 0 && request.m_Length != 0 &&
           request.m_Length <= 4096 && end <= UINT32_MAX;
}

TEST(ReaderProtocol, TakesOfRandomRequestsExactlyTheAllowed)
{
    std::mt19937 random(7); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same requests every time
    const auto word = [&] { return static_cast<std::uint32_t>(random()); };
    const auto oneOf = [&](const std::vector<std::uint32_t>& words) { return words[word() % words.size()]; };
    int taken = 0;
    for (int i = 0; i < 200'000; ++i) {
        CReaderRequest request = usual();
        request.m_Protocol =
            oneOf({READER_PROTOCOL, READER_PROTOCOL, READER_PROTOCOL, 0, READER_PROTOCOL + 1});
        request.m_Commands = oneOf({word() & 0x7FFU, word() & 0xFFFU, word() & 3U, word()});
        request.m_NamespaceId = oneOf({0, 1, UINT32_MAX, word()});
        request.m_Offset = oneOf({0, word() & 0xFFFU, word() << 2U, word(), UINT32_MAX});
        request.m_Length = oneOf({0, 4096, word() % 5000, (word() % 1100) << 2U, word()});
        const bool isExpected = isAllowed(request);
        ASSERT_EQ(isTaken(request), isExpected) << i;
        taken += isExpected ? 1 : 0;
    }
    EXPECT_GT(taken, 1000);
}

Bytes replyPacket(const CReaderAnswer& answer, std::size_t data)
{
    const auto head = readerPacket(answer);
    Bytes packet(head.begin(), head.end());
    packet.resize(head.size() + data, 0xAB);
    return packet;
}

TEST(ReaderProtocol, ReadsRepliesAsTheyWereSent)
{
    const Bytes packet = replyPacket({77, HEALTH_LOG, 0, 512, 0}, 512);
    const auto reply = parseReaderReply(packet);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->m_Answer.m_Sequence, 77U);
    EXPECT_EQ(reply->m_Answer.m_Command, HEALTH_LOG);
    EXPECT_EQ(Bytes(reply->m_Data.begin(), reply->m_Data.end()), Bytes(512, 0xAB));
    EXPECT_TRUE(parseReaderReply(replyPacket({77, HEALTH_LOG, 5, 0, 0}, 0)));
    EXPECT_TRUE(parseReaderReply(replyPacket({0, 0, 22, 0, 0}, 0))) << "a refusal";
    EXPECT_TRUE(parseReaderReply(replyPacket({0, 1, 0, 4096, 0}, 4096)));
}

TEST(ReaderProtocol, FindsDamageInReplies)
{
    EXPECT_FALSE(parseReaderReply({}));
    EXPECT_FALSE(parseReaderReply(Bytes(23)));
    EXPECT_FALSE(parseReaderReply(replyPacket({77, HEALTH_LOG, 0, 512, 0}, 511)));
    EXPECT_FALSE(parseReaderReply(replyPacket({77, HEALTH_LOG, 0, 512, 0}, 513)));
    EXPECT_FALSE(parseReaderReply(replyPacket({77, HEALTH_LOG, 5, 512, 0}, 512)))
        << "data of a failed command";
    EXPECT_FALSE(parseReaderReply(replyPacket({77, HEALTH_LOG, 0, 4100, 0}, 4100)));
    EXPECT_FALSE(parseReaderReply(replyPacket({77, HEALTH_LOG, 0, 512, 1}, 512)));
    EXPECT_FALSE(parseReaderReply(replyPacket({77, 3, 0, 512, 0}, 512))) << "two commands";
    EXPECT_FALSE(parseReaderReply(replyPacket({77, 0x800, 0, 512, 0}, 512)));
    EXPECT_FALSE(parseReaderReply(replyPacket({77, 0, 0, 0, 0}, 0))) << "a refusal without a reason";
}

TEST(ReaderProtocol, SendsNoZerosAtTheEndOfABlock)
{
    for (const std::size_t size : {0U, 1U, 31U, 32U, 33U, 512U, 4096U}) {
        Bytes block(size);
        EXPECT_EQ(readerDataLength(block), 0U) << size;
        for (std::size_t last = 0; last < size; ++last) {
            block[last] = 1;
            ASSERT_EQ(readerDataLength(block), last + 1) << size;
            block[last] = 0;
        }
    }
}

TEST(ReaderProtocol, KnowsHowLongEachAnswerIs)
{
    const CReaderRequest request = usual();
    EXPECT_EQ(readerLength(request, ReaderCommand::identifyController), 4096U);
    EXPECT_EQ(readerLength(request, ReaderCommand::identifyNamespace), 4096U);
    EXPECT_EQ(readerLength(request, HEALTH_LOG), 512U);
}

} // namespace
