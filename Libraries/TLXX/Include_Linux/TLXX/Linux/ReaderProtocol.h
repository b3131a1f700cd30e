#pragma once

#include <TLXX/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// What a client and the reader send each other over a local socket of type SOCK_SEQPACKET. Each packet is one
// request or one answer; numbers are in the byte order of the machine. `Docs/Reader.md` describes it.
namespace TLXX::Linux {

/** The first word of a request. Another layout gets another word. */
inline constexpr std::uint32_t READER_PROTOCOL = 0x4F525232;

/** The size of an answer of Identify, and the most that one command transfers. */
inline constexpr std::uint32_t READER_BLOCK = 4096;

/** The commands that the reader knows, each one bit of `CReaderRequest::m_Commands`. */
namespace ReaderCommand {
inline constexpr std::uint32_t identifyController = 1U << 0U;
inline constexpr std::uint32_t identifyNamespace = 1U << 1U;
inline constexpr std::uint32_t firstLogPage = 1U << 2U;
} // namespace ReaderCommand

/** The log pages that may be read. The first one is `ReaderCommand::firstLogPage`, the next one the next bit.
 */
inline constexpr std::array<std::uint8_t, 9> READER_LOG_PAGES = {0x01, 0x02, 0x03, 0x06, 0x81,
                                                                 0xC0, 0xC5, 0xCA, 0xDD};

/** Every bit that is a command. */
inline constexpr std::uint32_t READER_COMMANDS = (ReaderCommand::firstLogPage << READER_LOG_PAGES.size()) - 1;

/** Asks one controller for one or more commands. They are run from the lowest bit to the highest. */
struct CReaderRequest
{
    std::uint32_t m_Protocol = READER_PROTOCOL;
    std::uint32_t m_Controller = 0; ///< 3 for nvme3
    std::uint64_t m_Node = 0;       ///< of the controller in sysfs; see `CDiskOwner`
    std::uint64_t m_Sequence = 0;   ///< chosen by the client, repeated in each answer
    std::uint32_t m_Commands = 0;
    std::uint32_t m_NamespaceId = 0; ///< for Identify Namespace; 0 without it
    std::uint32_t m_Offset = 0;      ///< of each log page, in bytes, a multiple of 4; 0 without one
    std::uint32_t m_Length = 0; ///< of each log page, in bytes, a multiple of 4 up to 4096; 0 without one
};
static_assert(sizeof(CReaderRequest) == 40 && alignof(CReaderRequest) == 8);

/** What became of one command. Its data follows in the same packet, without the zeros at its end. */
struct CReaderAnswer
{
    std::uint64_t m_Sequence = 0;
    std::uint32_t m_Command = 0; ///< its bit; 0: the whole request was refused
    std::uint32_t m_Status = 0;  ///< as the queries of `NvmeQuery.h` return it
    std::uint32_t m_Length = 0;  ///< of the data; 0 unless the status is 0
    std::uint32_t m_Reserved = 0;
};
static_assert(sizeof(CReaderAnswer) == 24 && alignof(CReaderAnswer) == 8);

/** The largest packet of either direction. */
inline constexpr std::size_t READER_PACKET = sizeof(CReaderAnswer) + READER_BLOCK;

/** The bit of a log page; none if the reader does not read it. */
TLXX_EXPORT std::optional<std::uint32_t> readerLogCommand(std::uint8_t logIdentifier);

/** The log page of a bit of `m_Commands` that is a log page. */
TLXX_EXPORT std::uint8_t readerLogPage(std::uint32_t command);

/** The length of the data that `command`, one of the bits of `request`, brings. */
TLXX_EXPORT std::uint32_t readerLength(const CReaderRequest& request, std::uint32_t command);

/** The request in a packet; none unless every word of it is allowed. */
TLXX_EXPORT std::optional<CReaderRequest> parseReaderRequest(std::span<const std::uint8_t> packet);

/** The sequence number of a packet that is no request, for the refusal; 0 if the size is wrong. */
TLXX_EXPORT std::uint64_t readerSequence(std::span<const std::uint8_t> packet);

/** The packet of a request. */
TLXX_EXPORT std::array<std::uint8_t, sizeof(CReaderRequest)> readerPacket(const CReaderRequest& request);

/** How much of `block` goes into a packet: all but the zeros at its end. */
TLXX_EXPORT std::size_t readerDataLength(std::span<const std::uint8_t> block);

/** The head of an answer's packet. */
TLXX_EXPORT std::array<std::uint8_t, sizeof(CReaderAnswer)> readerPacket(const CReaderAnswer& answer);

/** An answer and its data. */
struct CReaderReply
{
    CReaderAnswer m_Answer;
    std::span<const std::uint8_t> m_Data; ///< in the packet
};

/** The reply in a packet; none if it is damaged. */
TLXX_EXPORT std::optional<CReaderReply> parseReaderReply(std::span<const std::uint8_t> packet);

} // namespace TLXX::Linux
