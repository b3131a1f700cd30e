#include "Facts/EndOfLife.h"

#include "Base/Time.h"
#include "Facts/PageFields.h"
#include "Facts/PropertyText.h"

#include <PI/LifeTimeData.h>
#include <PI/PluginHelper.h>
#include <TLX/Clock.h>

#include <algorithm>

namespace Host::Cli {
namespace {

constexpr std::uint64_t USED_UP = 100; // percent

/** What the drive's log says about its use. */
struct Use
{
    std::uint64_t m_Hours = 0;
    std::uint64_t m_BytesWritten = UNKNOWN_COUNTER;
    std::uint64_t m_Wear = 0; ///< percent, as counted by the drive itself
};

/** Nothing without the log, or when the log does not count hours. */
std::optional<Use> useOf(const Drive& drive)
{
    constexpr std::uint64_t bytesAUnit = 512'000;
    const auto hours = logCounter<&TLXX::NVME_SMART_HEALTH_INFORMATION_LOG::Counter128>(drive);
    if (!hours)
        return std::nullopt;
    Use use{*hours, UNKNOWN_COUNTER, drive.m_HealthLog->PercentageUsed};
    // A number that does not fit 64 bits becomes the highest number. All ones means not known.
    if (const auto units = logCounter<&TLXX::NVME_SMART_HEALTH_INFORMATION_LOG::DataUnitsWritten>(drive))
        use.m_BytesWritten =
            *units < UNKNOWN_COUNTER / bytesAUnit ? *units * bytesAUnit : UNKNOWN_COUNTER - 1;
    return use;
}

/** How long the drive lasts, from the amount written or from its wear. Nothing when neither can tell. */
std::optional<std::uint64_t> hoursLeft(std::uint64_t hours, std::uint64_t bytesWritten, std::uint64_t wear,
                                       std::uint64_t rating)
{
    std::uint64_t remaining = 0;
    if (!PI::CPluginHelper::ComputeRemainingLifeTime(hours, bytesWritten, wear, rating, remaining))
        return std::nullopt;
    return remaining;
}

void findLimit(EndOfLife& end, const Use& use)
{
    constexpr std::uint64_t notKnown = 0;
    constexpr std::uint64_t unlimited = PI::CPluginHelper::UNLIMITED_HOURS;
    const auto writing =
        hoursLeft(use.m_Hours, use.m_BytesWritten, notKnown, end.m_Rating.value_or(notKnown));
    const auto wear = hoursLeft(use.m_Hours, UNKNOWN_COUNTER, use.m_Wear, notKnown);
    end.m_RemainingHours = std::min(writing.value_or(unlimited), wear.value_or(unlimited));
    if (use.m_Wear >= USED_UP) {
        end.m_Limit = EndOfLife::Limit::Worn;
        end.m_RemainingHours = 0;
    } else if (!writing && !wear)
        end.m_Limit = EndOfLife::Limit::None;
    else if (end.m_RemainingHours >= unlimited)
        end.m_Limit = EndOfLife::Limit::Beyond;
    else if (writing && *writing == end.m_RemainingHours)
        end.m_Limit = EndOfLife::Limit::Writing;
    else
        end.m_Limit = EndOfLife::Limit::Wear;
    if (end.m_Limit == EndOfLife::Limit::Wear || end.m_Limit == EndOfLife::Limit::Worn)
        end.m_Wear = use.m_Wear;
}

/** A plug-in may treat a drive that is worn out like one whose wear is not known. */
bool isTooLate(const EndOfLife& end, bool dateCountsWear)
{
    constexpr std::uint64_t someDays = 2ULL * 24 * 3600 * MILLISECONDS_A_SECOND;
    constexpr std::size_t date = 10;
    if (end.m_Limit == EndOfLife::Limit::Wear)
        return !dateCountsWear;
    return end.m_Limit == EndOfLife::Limit::Worn &&
           end.m_Date > utcText(TLX::Misc::now() + someDays).substr(0, date);
}

std::string sentenceOf(const EndOfLife& end)
{
    switch (end.m_Limit) {
    case EndOfLife::Limit::None:
        return "Too little is known about this drive to compute its end of life. So the date is a hundred "
               "years from now.";
    case EndOfLife::Limit::Beyond:
        return "If it is used as up to now, the drive lasts longer than the hundred years to that date.";
    case EndOfLife::Limit::Writing:
        return end.m_RemainingHours == 0
                   ? "The whole amount that its maker allows has been written; plan to replace it."
                   : "If it is written to as up to now, the rating is reached in " +
                         durationText(end.m_RemainingHours) + '.';
    case EndOfLife::Limit::Wear:
        return end.m_RemainingHours == 0
                   ? "By its own count of wear the drive is worn out; plan to replace it."
                   : "If it is used as up to now, the drive's own count of wear, " +
                         std::to_string(end.m_Wear.value_or(0)) + "% now, reaches 100% in " +
                         durationText(end.m_RemainingHours) +
                         (end.m_Rating ? ", before the rating is reached." : ".");
    case EndOfLife::Limit::Worn:
        return "By its own count of wear the drive has used " + std::to_string(end.m_Wear.value_or(0)) +
               "% of its life: it is fully worn; plan to replace it.";
    }
    return {};
}

} // namespace

std::optional<EndOfLife> explainEndOfLife(const Drive& drive)
{
    const std::optional<Use> use = useOf(drive);
    if (drive.m_EndOfLifeDate.empty() || !use)
        return std::nullopt;
    EndOfLife end;
    end.m_AdapterId = drive.m_AdapterId.value_or(0);
    end.m_Date = drive.m_EndOfLifeDate;
    end.m_PowerOnHours = use->m_Hours;
    Amount written;
    PI::_UNITS unit{};
    if (PI::CPluginHelper::ConvertBytesToOtherUnit(use->m_BytesWritten, written.m_Value, unit)) {
        written.m_Unit = unit;
        end.m_DataWritten = written;
    }
    if (const auto* family = PI::findLifeTimeData(PI::GetLifeTimeDataNVMe(), drive.m_Model)) {
        end.m_Rating = family->m_Endurance;
        end.m_Endurance = drive.m_Wear;
    }
    findLimit(end, *use);
    end.m_DateTooLate = isTooLate(end, drive.m_DateCountsWear);
    return end;
}

std::string endOfLifeText(const EndOfLife& end)
{
    std::string figures = "Computed from " + hoursText(end.m_PowerOnHours) + " of operation";
    if (end.m_DataWritten)
        figures +=
            ", " +
            withUnit(numberText(static_cast<double>(end.m_DataWritten->m_Value)), end.m_DataWritten->m_Unit) +
            " written";
    figures += end.m_Rating ? ", a rating of " + std::to_string(*end.m_Rating) + " TiB"
                            : ", no known rating of this model";
    if (end.m_Endurance)
        figures += ", " + std::to_string(*end.m_Endurance) + "% of it used";
    return figures + ". " + sentenceOf(end) +
           (end.m_DateTooLate ? " The date does not take this into account." : "");
}

} // namespace Host::Cli
