#include "Facts/Silence.h"

#include "Base/Text.h"
#include "Base/Time.h"

#include <TLXX/NvmeQuery.h>

namespace Host::Cli {
namespace {

/** The time of day; with the date on another day than today. */
std::string shortTimeText(std::uint64_t time, std::uint64_t now)
{
    const std::string whole = localTimeText(time);
    const std::string today = localTimeText(now);
    const std::size_t date = whole.find(' ');
    return whole.compare(0, date, today, 0, date) == 0 ? timeOfDayText(time) : whole;
}

} // namespace

bool isSilent(const DriveAnswer& answer)
{
    return !answer.m_Answering && !TLXX::isPermissionStatus(answer.m_Status);
}

bool isSilent(const Drive& drive)
{
    return drive.m_Answer && isSilent(*drive.m_Answer);
}

std::set<std::string> silentInstances(const std::vector<DriveAnswer>& answers)
{
    std::set<std::string> instances;
    for (const DriveAnswer& answer : answers)
        if (isSilent(answer))
            instances.insert(answer.m_Instance);
    return instances;
}

std::string silenceText(const DriveAnswer& answer, std::uint64_t now)
{
    const bool wasHeard = answer.m_LastAnswer && answer.m_SilentSince;
    return "does not answer" + (wasHeard ? " since " + shortTimeText(*answer.m_SilentSince, now) : "");
}

std::string silenceReason(const DriveAnswer& answer, std::uint64_t now)
{
    return silenceText(answer, now) +
           (answer.m_Status == 0 ? std::string() : ": " + TLXX::statusText(answer.m_Status));
}

bool isUnheard(const Drive& drive, std::string_view name)
{
    return !drive.m_AdapterId && isSilent(drive) &&
           ((!drive.m_Serial.empty() && equalIgnoringCase(name, drive.m_Serial)) ||
            name == drive.m_PciAddress ||
            equalIgnoringCase(shortDeviceName(name), shortDeviceName(drive.m_Device)));
}

std::string unheardText(const Drive& drive, std::uint64_t now)
{
    return std::string(shortDeviceName(drive.m_Device)) + " " + silenceReason(*drive.m_Answer, now) +
           ". Nothing more is known of it.";
}

} // namespace Host::Cli
