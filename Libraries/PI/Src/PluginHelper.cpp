#include <PI/PluginHelper.h>
#include <TLX/LanguageSupport.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>

namespace PI {

namespace {

constexpr std::uint64_t UNKNOWN = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t UNRATED = 1;
constexpr std::uint64_t WEAR_NOT_KNOWN = 100;
// Drives report wear in one byte. A larger value comes from a difference that went below zero.
constexpr std::uint64_t WEAR_MAXIMUM = 255;
constexpr long double BYTES_PER_TIB = 1099511627776.0L;

/** How long the rest (`left`) lasts when `used` took `hours`; nothing when `hours` give no rate. */
std::optional<std::uint64_t> hoursLeft(long double left, long double used, std::uint64_t hours)
{
    if (left <= 0) {
        return 0;
    }
    if (hours == 0 || hours == UNKNOWN) {
        return std::nullopt;
    }
    const auto limit = static_cast<long double>(CPluginHelper::UNLIMITED_HOURS);
    if (used <= 0) {
        return CPluginHelper::UNLIMITED_HOURS;
    }
    return static_cast<std::uint64_t>(std::min(left * static_cast<long double>(hours) / used, limit));
}

std::optional<std::uint64_t> hoursOfWriting(std::uint64_t hours, std::uint64_t bytesWritten,
                                            std::uint64_t rating)
{
    if (bytesWritten == UNKNOWN || rating <= UNRATED || rating == UNKNOWN) {
        return std::nullopt;
    }
    const auto written = static_cast<long double>(bytesWritten);
    return hoursLeft(static_cast<long double>(rating) * BYTES_PER_TIB - written, written, hours);
}

std::optional<std::uint64_t> hoursOfWear(std::uint64_t hours, std::uint64_t wear)
{
    if (wear == 0 || wear == WEAR_NOT_KNOWN || wear > WEAR_MAXIMUM) {
        return std::nullopt;
    }
    const auto percent = static_cast<long double>(wear);
    return hoursLeft(100 - percent, percent, hours);
}

} // namespace

void CPluginHelper::GenerateCProperty(const _PROPERTY_DESCRIPTION& description, CProperty& property)
{
    property = CProperty();
    property.m_Description = description;
}

bool CPluginHelper::ConvertBytesToOtherUnit(std::uint64_t bytes, float& value, _UNITS& units)
{
    if (bytes == UNKNOWN) {
        return false;
    }
    static constexpr _UNITS STEPS[] = {UNIT_BYTES, UNIT_KIB, UNIT_MIB, UNIT_GIB,
                                       UNIT_TIB,   UNIT_PIB, UNIT_EIB};
    std::size_t step = 0;
    double scale = 1;
    for (std::uint64_t rest = bytes; rest >= 1024 && step + 1 < std::size(STEPS); rest /= 1024) {
        ++step;
        scale *= 1024;
    }
    value = static_cast<float>(static_cast<double>(bytes) / scale);
    units = STEPS[step];
    return true;
}

bool CPluginHelper::ComputeRemainingLifeTime(std::uint64_t hours, std::uint64_t bytesWritten,
                                             std::uint64_t wear, std::uint64_t rating,
                                             std::uint64_t& remaining)
{
    const auto byWriting = hoursOfWriting(hours, bytesWritten, rating);
    const auto byWear = hoursOfWear(hours, wear);
    remaining = std::min(byWriting.value_or(UNLIMITED_HOURS), byWear.value_or(UNLIMITED_HOURS));
    return byWriting.has_value() || byWear.has_value();
}

std::string PropertyValueToString(std::uint32_t code)
{
    auto text = TLX::Language_Support::CLanguageSupport::Find(code);
    return text.has_value() ? *text : std::to_string(code);
}

} // namespace PI
