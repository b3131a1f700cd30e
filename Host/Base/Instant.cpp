#include "Base/Instant.h"

#include "Base/Platform.h"
#include "Base/Text.h"
#include "Base/Time.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <limits>
#include <utility>

namespace Host {
namespace {

using std::chrono::seconds;
using std::chrono::sys_seconds;

constexpr std::array<std::pair<char, std::uint64_t>, 5> UNITS = {
    {{'s', 1}, {'m', 60}, {'h', 3600}, {'d', 86400}, {'w', 7 * 86400}}};

std::optional<std::uint64_t> parseAgo(std::string_view text, std::uint64_t now)
{
    const auto* const unit = std::find_if(UNITS.begin(), UNITS.end(), [&](const auto& each) {
        return !text.empty() && text.back() == each.first;
    });
    if (unit == UNITS.end())
        return std::nullopt;
    const auto count = parseNumber(text.substr(0, text.size() - 1), 10);
    const std::uint64_t length = unit->second * MILLISECONDS_A_SECOND;
    if (!count || *count > std::numeric_limits<std::uint64_t>::max() / length)
        return std::nullopt;
    return now - std::min(now, *count * length);
}

/** Takes the parts of a time from the front of a text. */
class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_Text(text) {}

    bool atEnd() const { return m_Text.empty(); }

    bool take(char character)
    {
        const bool found = m_Text.starts_with(character);
        m_Text.remove_prefix(found ? 1 : 0);
        return found;
    }

    /** A number of exactly `digits` digits, up to `largest`. */
    std::optional<int> number(std::size_t digits, int largest)
    {
        const auto number =
            m_Text.size() >= digits ? parseNumber(m_Text.substr(0, digits), 10) : std::nullopt;
        if (!number || *number > static_cast<std::uint64_t>(largest))
            return std::nullopt;
        m_Text.remove_prefix(digits);
        return static_cast<int>(*number);
    }

private:
    std::string_view m_Text;
};

std::optional<sys_seconds> takeDate(Scanner& scanner)
{
    constexpr int latest = 9999;
    const auto year = scanner.number(4, latest);
    const bool hasMonth = year && scanner.take('-');
    const auto month = hasMonth ? scanner.number(2, 12) : std::nullopt;
    const bool hasDay = month && scanner.take('-');
    const auto day = hasDay ? scanner.number(2, 31) : std::nullopt;
    if (!day)
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    return date.ok() ? std::optional<sys_seconds>(std::chrono::sys_days(date)) : std::nullopt;
}

/** Hours and minutes, as in a time and in an offset. */
std::optional<seconds> takeClock(Scanner& scanner)
{
    const auto hours = scanner.number(2, 23);
    const bool hasMinutes = hours && scanner.take(':');
    const auto minutes = hasMinutes ? scanner.number(2, 59) : std::nullopt;
    return minutes ? std::optional<seconds>(std::chrono::hours(*hours) + std::chrono::minutes(*minutes))
                   : std::nullopt;
}

std::optional<seconds> takeTimeOfDay(Scanner& scanner)
{
    const auto clock = takeClock(scanner);
    if (!clock || !scanner.take(':'))
        return clock;
    const auto second = scanner.number(2, 59);
    // Fractions are read over: no entry needs them.
    if (scanner.take('.'))
        while (scanner.number(1, 9))
            continue;
    return second ? std::optional(*clock + seconds(*second)) : std::nullopt;
}

/** What the clocks of this machine's time zone show at `time`, taken for UTC. */
sys_seconds shownAt(sys_seconds time)
{
    const std::tm local = Platform::localTime(time.time_since_epoch().count());
    constexpr int firstYear = 1900;
    return std::chrono::sys_days(
               std::chrono::year_month_day(std::chrono::year(local.tm_year + firstYear),
                                           std::chrono::month(static_cast<unsigned>(local.tm_mon + 1)),
                                           std::chrono::day(static_cast<unsigned>(local.tm_mday)))) +
           std::chrono::hours(local.tm_hour) + std::chrono::minutes(local.tm_min) + seconds(local.tm_sec);
}

sys_seconds fromLocal(sys_seconds shown)
{
    sys_seconds time = shown;
    // The second attempt knows the offset on the right side of a change to or from summer time.
    for (int attempt = 0; attempt < 2; ++attempt)
        time = shown - (shownAt(time) - time);
    return time;
}

std::optional<sys_seconds> parseTime(std::string_view text)
{
    Scanner scanner(text);
    const std::optional<sys_seconds> date = takeDate(scanner);
    if (!date || scanner.atEnd())
        return date ? std::optional(fromLocal(*date)) : std::nullopt;
    const auto clock = scanner.take('T') || scanner.take(' ') ? takeTimeOfDay(scanner) : std::nullopt;
    if (!clock)
        return std::nullopt;
    const sys_seconds shown = *date + *clock;
    if (scanner.atEnd())
        return fromLocal(shown);
    if (scanner.take('Z'))
        return scanner.atEnd() ? std::optional(shown) : std::nullopt;
    const bool isEast = scanner.take('+');
    const auto offset = isEast || scanner.take('-') ? takeClock(scanner) : std::nullopt;
    if (!offset || !scanner.atEnd())
        return std::nullopt;
    return isEast ? shown - *offset : shown + *offset;
}

} // namespace

std::optional<std::uint64_t> parseInstant(std::string_view text, std::uint64_t now)
{
    if (const auto ago = parseAgo(text, now))
        return ago;
    const std::optional<sys_seconds> time = parseTime(text);
    if (!time || time->time_since_epoch().count() < 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(time->time_since_epoch().count()) * MILLISECONDS_A_SECOND;
}

} // namespace Host
