#include "Drives_Linux/ReaderClient.h"

#include <TLX/Clock.h>
#include <TLXX/Linux/DiskOwner.h>

#include <climits>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

namespace Host {
namespace {

using TLX::Linux::CDescriptor;
using TLXX::EQuery;
using TLXX::Linux::CReaderRequest;
namespace ReaderCommand = TLXX::Linux::ReaderCommand;

constexpr std::uint64_t FIRST_DELAY = 100;
constexpr std::uint64_t LONGEST_DELAY = 10'000;
constexpr std::uint8_t LOG_HEALTH = 0x02;

/** The bit of a command; 0 if the reader does not know it. */
std::uint32_t bitOf(const TLXX::CDriveCommand& command)
{
    switch (command.m_Query) {
    case EQuery::IdentifyController:
        return ReaderCommand::identifyController;
    case EQuery::IdentifyNamespace:
        return ReaderCommand::identifyNamespace;
    case EQuery::SmartHealthLog:
        return TLXX::Linux::readerLogCommand(LOG_HEALTH).value_or(0);
    case EQuery::VendorLog:
        return TLXX::Linux::readerLogCommand(command.m_LogIdentifier).value_or(0);
    }
    return 0;
}

/** The length of each log page that a query asks for. */
constexpr std::uint32_t PAGE_LENGTH = sizeof(TLXX::VendorLogPage);
static_assert(PAGE_LENGTH == sizeof(TLXX::NVME_SMART_HEALTH_INFORMATION_LOG));

int milliseconds(std::uint64_t until)
{
    const std::uint64_t now = TLX::Misc::monotonic();
    return until <= now ? 0 : static_cast<int>(std::min<std::uint64_t>(until - now, INT_MAX));
}

} // namespace

ReaderClient::ReaderClient(ConnectReader connect)
    : m_Connect(std::move(connect)), m_Wake(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC))
{
    if (!m_Wake.Valid())
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

ReaderClient::~ReaderClient() = default;

void ReaderClient::Submit(const TLXX::CDriveAddress& drive, const std::vector<TLXX::CDriveCommand>& commands)
{
    const auto owner = TLXX::Linux::CDiskOwner::Parse(drive.m_Instance);
    CReaderRequest place;
    if (owner) {
        place.m_Controller = owner->m_Instance;
        place.m_Node = owner->m_Node;
        place.m_NamespaceId = owner->m_NamespaceId;
    }
    std::vector<Kind> kinds;
    for (const TLXX::CDriveCommand& command : commands) {
        const std::uint32_t bit = bitOf(command);
        if (!owner || bit == 0) {
            fail(drive, command, owner ? EOPNOTSUPP : TLXX::STATUS_NO_DEVICE);
            continue;
        }
        // The reader takes the bits of one request in their order.
        if (!kinds.empty() && bit <= kinds.back().first)
            send({drive, place, std::exchange(kinds, {})});
        kinds.emplace_back(bit, command);
    }
    if (!kinds.empty())
        send({drive, place, std::move(kinds)});
}

void ReaderClient::send(Request request)
{
    if (!connected())
        return fail(request, m_Reason);
    CReaderRequest packet = request.m_Place;
    for (const Kind& kind : request.m_Owed)
        packet.m_Commands |= kind.first;
    if ((packet.m_Commands & ReaderCommand::identifyNamespace) == 0)
        packet.m_NamespaceId = 0;
    if (request.m_Owed.back().first >= ReaderCommand::firstLogPage)
        packet.m_Length = PAGE_LENGTH;
    packet.m_Sequence = ++m_LastSequence;
    m_Requests.insert({packet.m_Sequence, std::move(request)});
    m_Unsent.push_back(packet);
    flush();
}

bool ReaderClient::connected()
{
    if (m_Connection.Valid())
        return true;
    if (TLX::Misc::monotonic() < m_RetryAt)
        return false;
    try {
        m_Connection = m_Connect();
    } catch (const std::system_error& error) {
        m_Reason = static_cast<std::uint32_t>(error.code().value());
        postpone();
    }
    return m_Connection.Valid();
}

void ReaderClient::flush()
{
    while (!m_Unsent.empty()) {
        const auto packet = TLXX::Linux::readerPacket(m_Unsent.front());
        if (::send(m_Connection.Get(), packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0)
            m_Unsent.pop_front();
        else if (errno == EAGAIN || errno == ENOBUFS || errno == ENOMEM)
            return;
        else if (errno != EINTR)
            return end();
    }
}

/** Takes the answers that came before the end of the connection. */
void ReaderClient::end()
{
    if (receive())
        lose();
}

/** Returns false when the connection was lost, even if there is another one now. */
bool ReaderClient::receive()
{
    // One byte more, which shows that a packet is too long.
    std::array<std::uint8_t, TLXX::Linux::READER_PACKET + 1> packet; // NOLINT(*-member-init)
    bool isReset = false;
    for (;;) {
        const ssize_t size = ::recv(m_Connection.Get(), packet.data(), packet.size(), MSG_DONTWAIT);
        // The system tells this once, and before the answers that have come.
        if (size < 0 && errno == ECONNRESET && !std::exchange(isReset, true))
            continue;
        if (size < 0 && errno == EAGAIN)
            return true;
        if (size < 0 && errno == EINTR)
            continue;
        if (size <= 0 || !take(std::span(packet).first(static_cast<std::size_t>(size)))) {
            lose();
            return false;
        }
    }
}

/** Returns false when the packet is no answer to what was asked. */
bool ReaderClient::take(std::span<const std::uint8_t> packet)
{
    const auto reply = TLXX::Linux::parseReaderReply(packet);
    const auto request = reply ? m_Requests.find(reply->m_Answer.m_Sequence) : m_Requests.end();
    if (request == m_Requests.end())
        return false;
    auto& owed = request->second.m_Owed;
    const auto kind = std::find_if(owed.begin(), owed.end(),
                                   [&](const Kind& each) { return each.first == reply->m_Answer.m_Command; });
    if (kind == owed.end())
        return false;
    const std::uint32_t status = reply->m_Answer.m_Status;
    const std::size_t length =
        kind->first < ReaderCommand::firstLogPage ? TLXX::Linux::READER_BLOCK : PAGE_LENGTH;
    if (reply->m_Data.size() > length)
        return false;
    std::vector<std::uint8_t> block;
    if (status == 0) {
        block.reserve(length);
        block.assign(reply->m_Data.begin(), reply->m_Data.end());
        block.resize(length); // The zeros at its end do not travel.
    }
    m_Answers.push_back({request->second.m_Drive, kind->second, status, std::move(block)});
    owed.erase(kind);
    if (owed.empty())
        m_Requests.erase(request);
    m_HasAnswered = true;
    m_Delay = 0;
    return true;
}

std::optional<TLXX::CDriveAnswer> ReaderClient::Wait(std::uint64_t until)
{
    for (;;) {
        if (!m_Answers.empty()) {
            TLXX::CDriveAnswer answer = std::move(m_Answers.front());
            m_Answers.pop_front();
            return answer;
        }
        const short events = static_cast<short>(m_Unsent.empty() ? POLLIN : POLLIN | POLLOUT);
        std::array<pollfd, 2> places = {
            {{m_Wake.Get(), POLLIN, 0}, {m_Connection.Valid() ? m_Connection.Get() : -1, events, 0}}};
        const int happened = ::poll(places.data(), places.size(), milliseconds(until));
        if (happened == 0 && milliseconds(until) == 0)
            return std::nullopt;
        if (places[1].revents != 0)
            receive();
        if (places[1].revents != 0 && m_Connection.Valid())
            flush();
        eventfd_t count = 0;
        if (m_Answers.empty() && places[0].revents != 0 && ::eventfd_read(m_Wake.Get(), &count) == 0)
            return std::nullopt;
    }
}

void ReaderClient::Wake()
{
    (void)::eventfd_write(m_Wake.Get(), 1);
}

void ReaderClient::fail(const TLXX::CDriveAddress& drive, const TLXX::CDriveCommand& command,
                        std::uint32_t status)
{
    m_Answers.push_back({drive, command, status, {}});
}

void ReaderClient::fail(const Request& request, std::uint32_t status)
{
    for (const Kind& kind : request.m_Owed)
        fail(request.m_Drive, kind.second, status);
}

void ReaderClient::lose()
{
    m_Connection = {};
    m_Unsent.clear();
    m_Reason = ECONNRESET;
    // After a reader that has worked, the next one probably works at once.
    if (!std::exchange(m_HasAnswered, false))
        postpone();
    for (auto& [sequence, request] : std::exchange(m_Requests, {})) {
        if (std::exchange(request.m_IsRepeated, true))
            fail(request, ECONNRESET);
        else
            send(std::move(request));
    }
}

void ReaderClient::postpone()
{
    m_Delay = m_Delay == 0 ? FIRST_DELAY : std::min(m_Delay * 2, LONGEST_DELAY);
    m_RetryAt = TLX::Misc::monotonic() + m_Delay;
}

} // namespace Host
