#include "Drives/DriveRounds.h"

#include <TLX/Clock.h>
#include <TLXX/NvmeStructures.h>

#include <algorithm>
#include <utility>

namespace Host {
namespace {

using TLXX::CDriveCommand;
using TLXX::EQuery;

constexpr CDriveCommand IDENTIFY{EQuery::IdentifyController, 0};

/** The commands for a drive of which the plug-in has not asked anything yet. */
constexpr CDriveCommand FIRST_COMMANDS[] = {
    IDENTIFY, {EQuery::IdentifyNamespace, 0}, {EQuery::SmartHealthLog, 0}};

std::span<const std::uint8_t> bytesOf(const TLXX::NVME_IDENTIFY_CONTROLLER& controller)
{
    return {reinterpret_cast<const std::uint8_t*>(&controller), sizeof controller};
}

/** As Identify Controller tells it. */
std::uint16_t makerOf(const DriveRecord& record)
{
    return record.m_Identify ? record.m_Identify->VID : std::uint16_t{0};
}

std::uint32_t copy(std::span<const std::uint8_t> from, std::span<std::uint8_t> to)
{
    if (from.size() != to.size())
        return TLXX::STATUS_NO_ANSWER;
    std::copy(from.begin(), from.end(), to.begin());
    return 0;
}

} // namespace

DriveRounds::DriveRounds(std::unique_ptr<TLXX::IDriveSource> source) : m_Source(std::move(source)) {}

void DriveRounds::read(const std::vector<TLXX::CDriveAddress>& drives)
{
    // Nobody has collected these answers yet. They are not late before their time is over.
    awaitAll();
    while (!m_Stopped) {
        std::optional<TLXX::CDriveAnswer> late = m_Source->Wait(TLX::Misc::monotonic());
        if (!late)
            break;
        take(std::move(*late));
    }

    for (auto& [instance, drive] : m_Drives)
        drive.m_Present = false;
    for (const TLXX::CDriveAddress& address : drives)
        known(address).m_Present = true;
    forgetAbsent();

    for (const TLXX::CDriveAddress& address : drives) {
        Drive& drive = known(address);
        drive.m_Read = true;
        drive.m_Replies.clear();
        drive.m_Left = ROUND_DEADLINE;
        if (drive.m_State == State::Idle && drive.m_Owed == 0 && !m_Stopped) {
            drive.m_Due = TLX::Misc::monotonic() + ROUND_DEADLINE;
            tryAgain(drive);
        }
    }
    awaitAll();
    for (auto& [instance, drive] : m_Drives)
        if (drive.m_Present)
            conclude(drive);
}

std::uint32_t DriveRounds::query(const TLXX::CDriveAddress& address, const CDriveCommand& command,
                                 std::span<std::uint8_t> block)
{
    Drive& drive = known(address);
    drive.m_Wanted.insert(command);
    if (mayAnswer(drive) && !drive.m_Replies.contains(command))
        askNow(drive, command);
    if (mayAnswer(drive)) {
        const auto reply = drive.m_Replies.find(command);
        if (reply == drive.m_Replies.end())
            return TLXX::STATUS_NO_ANSWER;
        return reply->second.m_Status != 0 ? reply->second.m_Status : copy(reply->second.m_Block, block);
    }
    if (command == IDENTIFY && drive.m_Record.m_Identify)
        return copy(bytesOf(*drive.m_Record.m_Identify), block);
    // The name of the drive comes from a vendor log, and `TLXX` does not keep that log.
    if (const auto log = drive.m_Logs.find(command.m_LogIdentifier);
        command.m_Query == EQuery::VendorLog && log != drive.m_Logs.end())
        return copy(log->second, block);
    return drive.m_Record.m_Status != 0 ? drive.m_Record.m_Status : TLXX::STATUS_NO_ANSWER;
}

bool DriveRounds::mayAnswer(const Drive& drive)
{
    return drive.m_Record.m_Answering || !drive.m_Read;
}

const DriveRecord* DriveRounds::record(const std::string& instance) const
{
    const auto found = m_Drives.find(instance);
    return found == m_Drives.end() || !found->second.m_Present ? nullptr : &found->second.m_Record;
}

void DriveRounds::stopWaiting()
{
    m_Stopped = true;
    m_Source->Wake();
}

DriveRounds::Drive& DriveRounds::known(const TLXX::CDriveAddress& address)
{
    Drive& drive = m_Drives[address.m_Instance];
    drive.m_Address = address;
    return drive;
}

void DriveRounds::forgetAbsent()
{
    for (auto entry = m_Drives.begin(); entry != m_Drives.end();) {
        Drive& drive = entry->second;
        if (drive.m_Present || drive.m_Owed != 0) {
            // A drive with an outstanding command is kept, so that it gets no second one if it comes back.
            if (!drive.m_Present)
                drive.m_Record = {};
            ++entry;
        } else {
            entry = m_Drives.erase(entry);
        }
    }
}

void DriveRounds::send(Drive& drive, const std::vector<CDriveCommand>& commands)
{
    drive.m_State = State::Asked;
    drive.m_Owed = commands.size();
    drive.m_AskedAt = TLX::Misc::now();
    m_NextLook = std::min(m_NextLook, drive.m_Due);
    m_Source->Submit(drive.m_Address, commands);
}

void DriveRounds::tryAgain(Drive& drive)
{
    std::set<CDriveCommand> commands = std::exchange(drive.m_Wanted, {});
    if (commands.empty())
        commands.insert(std::begin(FIRST_COMMANDS), std::end(FIRST_COMMANDS));
    commands.insert(IDENTIFY);
    if (drive.m_State == State::Idle)
        ++m_Busy;
    ++drive.m_Tries;
    send(drive, {commands.begin(), commands.end()});
}

void DriveRounds::take(TLXX::CDriveAnswer answer)
{
    const auto found = m_Drives.find(answer.m_Drive.m_Instance);
    if (found == m_Drives.end() || found->second.m_Owed == 0)
        return;
    Drive& drive = found->second;
    --drive.m_Owed;
    // What comes too late only frees the drive for the next round.
    if (drive.m_State != State::Asked)
        return;
    Reply& reply = drive.m_Replies[answer.m_Command];
    reply = {answer.m_Status, std::move(answer.m_Block)};
    if (reply.m_Status != 0)
        ++m_Failures;
    if (answer.m_Command == IDENTIFY && reply.m_Status == 0)
        takeIdentify(drive, reply);
    if (answer.m_Command.m_Query == EQuery::VendorLog && reply.m_Status == 0)
        drive.m_Logs[answer.m_Command.m_LogIdentifier] = reply.m_Block;
    if (drive.m_Owed == 0)
        finish(drive);
}

void DriveRounds::takeIdentify(Drive& drive, const Reply& reply)
{
    drive.m_Record.m_LastAnswer = TLX::Misc::now();
    std::optional<TLXX::NVME_IDENTIFY_CONTROLLER>& known = drive.m_Record.m_Identify;
    // It hardly ever changes.
    if (known && std::ranges::equal(bytesOf(*known), reply.m_Block))
        return;
    TLXX::NVME_IDENTIFY_CONTROLLER fresh{};
    std::copy_n(reply.m_Block.begin(), std::min(reply.m_Block.size(), sizeof fresh),
                reinterpret_cast<std::uint8_t*>(&fresh));
    if (!known || known->SN != fresh.SN)
        drive.m_Logs.clear();
    known = fresh;
}

void DriveRounds::finish(Drive& drive)
{
    const std::uint64_t now = TLX::Misc::monotonic();
    drive.m_Left = drive.m_Due - std::min(now, drive.m_Due);
    if (!drive.m_Record.m_Identify && drive.m_Read && drive.m_Tries < NEWCOMER_TRIES &&
        drive.m_Left > NEWCOMER_PAUSE) {
        drive.m_State = State::Pausing;
        drive.m_NextTry = now + NEWCOMER_PAUSE;
        m_NextLook = std::min(m_NextLook, drive.m_NextTry);
    } else {
        rest(drive);
    }
}

void DriveRounds::rest(Drive& drive)
{
    drive.m_State = State::Idle;
    --m_Busy;
}

void DriveRounds::conclude(Drive& drive)
{
    const auto identify = drive.m_Replies.find(IDENTIFY);
    const bool identified = identify != drive.m_Replies.end() && identify->second.m_Status == 0;
    if (drive.m_Owed == 0 && identified) {
        drive.m_Record.m_Answering = true;
        drive.m_Record.m_SilentSince.reset();
        drive.m_Record.m_SilentRounds = 0;
        drive.m_Record.m_Status = 0;
    } else if (m_Stopped) {
        drive.m_Record.m_Answering = false;
    } else {
        const bool failed = drive.m_Owed == 0 && identify != drive.m_Replies.end();
        fallSilent(drive, failed ? identify->second.m_Status : TLXX::STATUS_NO_ANSWER);
        ++drive.m_Record.m_SilentRounds;
    }
}

void DriveRounds::fallSilent(Drive& drive, std::uint32_t status)
{
    drive.m_Record.m_Answering = false;
    drive.m_Record.m_Status = status;
    if (!drive.m_Record.m_SilentSince)
        drive.m_Record.m_SilentSince = drive.m_AskedAt;
}

void DriveRounds::awaitAll()
{
    m_NextLook = 0;
    while (m_Busy != 0 && !m_Stopped)
        awaitOne();
}

void DriveRounds::await(const Drive& drive)
{
    m_NextLook = 0;
    while (drive.m_State != State::Idle && !m_Stopped)
        awaitOne();
}

void DriveRounds::awaitOne()
{
    if (TLX::Misc::monotonic() >= m_NextLook)
        lookAtTheClock();
    if (m_Busy == 0)
        return;
    if (auto answer = m_Source->Wait(m_NextLook))
        take(std::move(*answer));
}

void DriveRounds::lookAtTheClock()
{
    const std::uint64_t now = TLX::Misc::monotonic();
    m_NextLook = NEVER;
    for (auto& [instance, drive] : m_Drives) {
        if (drive.m_State == State::Asked && now >= drive.m_Due) {
            drive.m_Left = 0;
            m_Failures += drive.m_Owed;
            rest(drive);
        } else if (drive.m_State == State::Pausing && now >= drive.m_NextTry) {
            tryAgain(drive);
        } else if (drive.m_State != State::Idle) {
            m_NextLook = std::min(m_NextLook, drive.m_State == State::Asked ? drive.m_Due : drive.m_NextTry);
        }
    }
}

void DriveRounds::askNow(Drive& drive, const CDriveCommand& command)
{
    if (m_Stopped)
        return;
    const auto ask = [&](Drive& candidate) {
        if (candidate.m_State != State::Idle || candidate.m_Owed != 0 ||
            candidate.m_Replies.contains(command))
            return;
        candidate.m_Due = TLX::Misc::monotonic() + candidate.m_Left;
        ++m_Busy;
        send(candidate, {command});
    };
    // It may still be asked for another page.
    await(drive);
    ask(drive);
    for (auto& [instance, other] : m_Drives)
        if (other.m_Record.m_Answering && makerOf(other.m_Record) == makerOf(drive.m_Record))
            ask(other);
    await(drive);
    if (drive.m_Owed != 0 && !m_Stopped) {
        fallSilent(drive, TLXX::STATUS_NO_ANSWER);
        drive.m_Record.m_SilentRounds = 1;
    }
}

} // namespace Host
