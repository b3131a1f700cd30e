#include "Facts/EndOfLife.h"

#include "Base/Text.h"
#include "Facts/PropertyText.h"

#include <PI/LifeTimeData.h>
#include <PI/PluginHelper.h>
#include <TLX/Clock.h>
#include <TLXX/NvmeQuery.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <variant>

namespace Host::Cli {
namespace {

using Days = std::chrono::sys_days;

constexpr std::uint64_t HOURS_PER_DAY = 24;

// Amounts come rounded, dates without an hour, and time goes on between a date and its explanation.
constexpr std::chrono::days TOLERANCE{2};

std::optional<Days> parseDate(const std::string& text)
{
    constexpr std::size_t length = 10;
    if (text.size() != length || text[4] != '-' || text[7] != '-')
        return std::nullopt;
    const auto year = parseNumber(text.substr(0, 4), 10);
    const auto month = parseNumber(text.substr(5, 2), 10);
    const auto day = parseNumber(text.substr(8, 2), 10);
    if (!year || !month || !day)
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    return date.ok() ? std::optional(Days(date)) : std::nullopt;
}

Days today()
{
    const std::chrono::milliseconds now(TLX::Misc::now());
    return std::chrono::floor<std::chrono::days>(std::chrono::sys_time<std::chrono::milliseconds>(now));
}

bool isNear(Days date, std::uint64_t hours)
{
    const auto difference = date - (today() + std::chrono::days(hours / HOURS_PER_DAY));
    return std::chrono::abs(difference) <= TOLERANCE;
}

template<typename Value>
const Value* valueOf(const PI::CObject& adapter, std::uint32_t propertyId)
{
    const PI::CProperty* property = findProperty(adapter, propertyId);
    return property != nullptr ? std::get_if<Value>(&property->GetValue()) : nullptr;
}

/** What fits no 64 bits is the highest number that does; all ones stand for what is not known. */
std::uint64_t wholeNumber(double number)
{
    constexpr double beyond = 0x1p64;
    constexpr std::uint64_t highest = std::numeric_limits<std::uint64_t>::max() - 1;
    return number < beyond ? static_cast<std::uint64_t>(number) : highest;
}

/** How long the rating lasts; none when there is nothing to compute that from. */
std::optional<std::uint64_t> hoursOfWriting(const EndOfLife& end)
{
    constexpr std::uint64_t notKnown = 0;
    const std::optional<double> bytes = end.m_DataWritten ? bytesOf(*end.m_DataWritten) : std::nullopt;
    std::uint64_t hours = 0;
    if (!bytes || !end.m_Rating ||
        !PI::CPluginHelper::ComputeRemainingLifeTime(end.m_PowerOnHours, wholeNumber(*bytes), notKnown,
                                                     *end.m_Rating, hours))
        return std::nullopt;
    return hours;
}

constexpr std::uint64_t USED_UP = 100; // percent

/** What a drive counts as used of its life, in percent. No plug-in shows it; it is in the drive's pages. */
struct CountedWear
{
    std::optional<std::uint64_t> m_Attribute;  ///< of an Intel drive: what its date was computed from
    std::optional<std::uint64_t> m_Percentage; ///< of any drive, by its health log

    std::uint64_t highest() const { return std::max(m_Attribute.value_or(0), m_Percentage.value_or(0)); }
};

/** The wear attribute counts what is left, from 100 down; in one product line it counts what is used. */
std::optional<std::uint64_t> wearAttribute(const PI::CObject& adapter, const std::string& serial)
{
    constexpr std::uint8_t legacySmartLog = 0xCA;
    constexpr std::size_t wearOffset = 27;
    const auto page = TLXX::lastVendorLogPage(serial, legacySmartLog);
    if (!page || textOf(adapter, PI::PROP_VENDOR) != "INTEL")
        return std::nullopt;
    const std::string model = textOf(adapter, PI::PROP_MODEL);
    const bool countsUsed = model.starts_with("SSDPED1K") && model.ends_with("GA");
    const std::uint64_t value = std::min<std::uint64_t>((*page)[wearOffset], USED_UP);
    return countsUsed ? value : USED_UP - value;
}

CountedWear countedWear(const PI::CObject& adapter)
{
    CountedWear wear;
    const std::string serial = textOf(adapter, PI::PROP_SERIAL_NUMBER);
    if (const auto log = TLXX::lastHealthLog(serial))
        wear.m_Percentage = log->PercentageUsed;
    wear.m_Attribute = wearAttribute(adapter, serial);
    return wear;
}

/** A plug-in does not show which of the two decided; the date tells, unless the drive is used up. */
void findLimit(EndOfLife& end, Days date, const CountedWear& wear)
{
    if (wear.highest() >= USED_UP) {
        end.m_Limit = EndOfLife::Limit::Worn;
        end.m_Wear = wear.highest();
        return;
    }
    const std::optional<std::uint64_t> writing = hoursOfWriting(end);
    const bool wears = wear.m_Attribute.value_or(0) != 0;
    if (isNear(date, PI::CPluginHelper::UNLIMITED_HOURS)) {
        if (writing || wears)
            end.m_Limit = EndOfLife::Limit::Beyond;
        return;
    }
    if (writing && isNear(date, *writing)) {
        end.m_Limit = EndOfLife::Limit::Writing;
        return;
    }
    end.m_Limit = EndOfLife::Limit::Wear;
    if (wears) {
        end.m_Wear = wear.m_Attribute;
        return;
    }
    const auto hours = static_cast<double>(end.m_PowerOnHours);
    const double all = hours + static_cast<double>(end.m_RemainingHours);
    if (all > 0)
        end.m_Wear = static_cast<std::uint64_t>(std::lround(100 * hours / all));
}

std::string sentenceOf(const EndOfLife& end)
{
    switch (end.m_Limit) {
    case EndOfLife::Limit::None:
        return "Too little is known of this drive to foresee its end; the date, a hundred years from now, "
               "says no more than that.";
    case EndOfLife::Limit::Beyond:
        return "If it is used as up to now, the drive lasts longer than the hundred years to that date.";
    case EndOfLife::Limit::Writing:
        return end.m_RemainingHours == 0
                   ? "All that its maker lets be written to it has been written; plan to replace it."
                   : "If it is written to as up to now, the rating is reached in " +
                         durationText(end.m_RemainingHours) + '.';
    case EndOfLife::Limit::Wear:
        return end.m_RemainingHours == 0
                   ? "By its own count of wear the drive is worn out; plan to replace it."
                   : "If it is used as up to now, the drive's own count of wear, about " +
                         std::to_string(end.m_Wear.value_or(0)) + "% now, is at its end in " +
                         durationText(end.m_RemainingHours) +
                         (end.m_Rating ? ", before the rating is reached." : ".");
    case EndOfLife::Limit::Worn:
        return "By its own count of wear the drive has used " + std::to_string(end.m_Wear.value_or(0)) +
               "% of its life: it is fully worn; plan to replace it." +
               (end.m_RemainingHours == 0 ? "" : " The date does not take this into account.");
    }
    return {};
}

} // namespace

std::optional<EndOfLife> explainEndOfLife(const PI::CObject& adapter)
{
    const std::optional<Days> date = parseDate(textOf(adapter, PI::PROP_END_OF_LIFE_DATE));
    const auto* hours = valueOf<std::uint64_t>(adapter, PI::PROP_POWER_ON_HOURS);
    if (!date || hours == nullptr)
        return std::nullopt;
    EndOfLife end;
    end.m_AdapterId = adapter.m_ID;
    end.m_Date = textOf(adapter, PI::PROP_END_OF_LIFE_DATE);
    end.m_PowerOnHours = *hours;
    if (const auto* written = valueOf<float>(adapter, PI::PROP_DATA_WRITTEN))
        end.m_DataWritten = Amount{*written, findProperty(adapter, PI::PROP_DATA_WRITTEN)->Units()};
    if (const auto* family =
            PI::findLifeTimeData(PI::GetLifeTimeDataNVMe(), textOf(adapter, PI::PROP_MODEL))) {
        end.m_Rating = family->m_Endurance;
        if (const auto* used = valueOf<PI::CBoundedValue>(adapter, PI::PROP_ENDURANCE_USED))
            end.m_Endurance = used->m_Value;
    }
    if (*date > today())
        end.m_RemainingHours = static_cast<std::uint64_t>((*date - today()).count()) * HOURS_PER_DAY;
    findLimit(end, *date, countedWear(adapter));
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
    return figures + ". " + sentenceOf(end);
}

} // namespace Host::Cli
