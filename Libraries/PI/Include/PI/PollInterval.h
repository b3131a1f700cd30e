#pragma once

#include <algorithm>
#include <cstdint>
#include <locale>
#include <optional>
#include <sstream>
#include <string>

// The one setting of the plug-in: who writes it, who reads it and who checks it go by the same rule.
namespace PI {

/** Its key in the settings file. */
inline constexpr char POLL_INTERVAL_KEY[] = "PollInterval";

/** Its bounds, and what holds where the file names no number, in seconds. */
inline constexpr std::uint32_t MINIMUM_POLL_INTERVAL = 2;
inline constexpr std::uint32_t MAXIMUM_POLL_INTERVAL = 255;
inline constexpr std::uint32_t USUAL_POLL_INTERVAL = 30;

/** The number that the whole of a setting's text is, blanks before it aside, if it is one. */
inline std::optional<std::uint32_t> settingNumber(const std::string& text)
{
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    std::uint32_t number = 0;
    if (!(stream >> number) || stream.peek() != std::istringstream::traits_type::eof())
        return std::nullopt;
    return number;
}

/** The interval that holds where the file has `text`. */
inline std::uint32_t pollIntervalOf(const std::string& text)
{
    return std::clamp(settingNumber(text).value_or(USUAL_POLL_INTERVAL), MINIMUM_POLL_INTERVAL,
                      MAXIMUM_POLL_INTERVAL);
}

} // namespace PI
