#include <TLXX/Linux/ReaderProtocol.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace TLXX::Linux {
namespace {

constexpr std::uint32_t ALIGNMENT = 4;
constexpr std::uint32_t ALL_NAMESPACES = 0xFFFFFFFF;
constexpr std::uint32_t LOG_PAGES = READER_COMMANDS & ~(ReaderCommand::firstLogPage - 1);

template<typename Record>
Record recordOf(std::span<const std::uint8_t> packet)
{
    Record record;
    std::memcpy(&record, packet.data(), sizeof record);
    return record;
}

template<typename Record>
std::array<std::uint8_t, sizeof(Record)> bytesOf(const Record& record)
{
    std::array<std::uint8_t, sizeof(Record)> bytes{};
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

/** Whether the words that concern log pages fit the commands. */
bool hasValidPart(const CReaderRequest& request)
{
    if ((request.m_Commands & LOG_PAGES) == 0)
        return request.m_Offset == 0 && request.m_Length == 0;
    return request.m_Offset % ALIGNMENT == 0 && request.m_Length % ALIGNMENT == 0 && request.m_Length > 0 &&
           request.m_Length <= READER_BLOCK && request.m_Offset <= UINT32_MAX - request.m_Length;
}

bool hasValidNamespace(const CReaderRequest& request)
{
    const bool isNamed = request.m_NamespaceId != 0 && request.m_NamespaceId != ALL_NAMESPACES;
    return (request.m_Commands & ReaderCommand::identifyNamespace) != 0 ? isNamed
                                                                        : request.m_NamespaceId == 0;
}

} // namespace

std::optional<std::uint32_t> readerLogCommand(std::uint8_t logIdentifier)
{
    const auto* const found = std::find(READER_LOG_PAGES.begin(), READER_LOG_PAGES.end(), logIdentifier);
    if (found == READER_LOG_PAGES.end())
        return std::nullopt;
    return ReaderCommand::firstLogPage << static_cast<unsigned>(found - READER_LOG_PAGES.begin());
}

std::uint8_t readerLogPage(std::uint32_t command)
{
    return READER_LOG_PAGES.at(
        static_cast<std::size_t>(std::countr_zero(command) - std::countr_zero(ReaderCommand::firstLogPage)));
}

std::uint32_t readerLength(const CReaderRequest& request, std::uint32_t command)
{
    return command < ReaderCommand::firstLogPage ? READER_BLOCK : request.m_Length;
}

std::optional<CReaderRequest> parseReaderRequest(std::span<const std::uint8_t> packet)
{
    if (packet.size() != sizeof(CReaderRequest))
        return std::nullopt;
    const auto request = recordOf<CReaderRequest>(packet);
    const bool isKnown = request.m_Protocol == READER_PROTOCOL && request.m_Commands != 0 &&
                         (request.m_Commands & ~READER_COMMANDS) == 0;
    return isKnown && hasValidPart(request) && hasValidNamespace(request) ? std::optional(request)
                                                                          : std::nullopt;
}

std::uint64_t readerSequence(std::span<const std::uint8_t> packet)
{
    return packet.size() == sizeof(CReaderRequest) ? recordOf<CReaderRequest>(packet).m_Sequence : 0;
}

std::array<std::uint8_t, sizeof(CReaderRequest)> readerPacket(const CReaderRequest& request)
{
    return bytesOf(request);
}

std::size_t readerDataLength(std::span<const std::uint8_t> block)
{
    constexpr std::array<std::uint8_t, 32> zeros{};
    // Most blocks end with hundreds of zeros.
    while (block.size() >= zeros.size() &&
           std::memcmp(block.last(zeros.size()).data(), zeros.data(), zeros.size()) == 0)
        block = block.first(block.size() - zeros.size());
    while (!block.empty() && block.back() == 0)
        block = block.first(block.size() - 1);
    return block.size();
}

std::array<std::uint8_t, sizeof(CReaderAnswer)> readerPacket(const CReaderAnswer& answer)
{
    return bytesOf(answer);
}

std::optional<CReaderReply> parseReaderReply(std::span<const std::uint8_t> packet)
{
    if (packet.size() < sizeof(CReaderAnswer))
        return std::nullopt;
    const CReaderReply reply = {recordOf<CReaderAnswer>(packet), packet.subspan(sizeof(CReaderAnswer))};
    const CReaderAnswer& answer = reply.m_Answer;
    const bool isWhole = answer.m_Length == reply.m_Data.size() && answer.m_Length <= READER_BLOCK &&
                         (answer.m_Status == 0 || answer.m_Length == 0) && answer.m_Reserved == 0;
    const bool isKnown = std::popcount(answer.m_Command) <= 1 && (answer.m_Command & ~READER_COMMANDS) == 0 &&
                         (answer.m_Command != 0 || answer.m_Status != 0);
    return isWhole && isKnown ? std::optional(reply) : std::nullopt;
}

} // namespace TLXX::Linux
