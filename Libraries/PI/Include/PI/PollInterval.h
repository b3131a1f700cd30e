#pragma once

#include <algorithm>
#include <cstdint>
#include <locale>
#include <optional>
#include <sstream>
#include <string>

// The plug-in's one setting. Every part that writes, reads or checks it uses these rules.
namespace PI {

/** Its key in the settings file. */
inline constexpr char POLL_INTERVAL_KEY[] = "PollInterval";

/** Its bounds and its default, in seconds. The default holds when the file has no number. */
inline constexpr std::uint32_t MINIMUM_POLL_INTERVAL = 2;
inline constexpr std::uint32_t MAXIMUM_POLL_INTERVAL = 255;
inline constexpr std::uint32_t DEFAULT_POLL_INTERVAL = 30;

/** The number in a setting's text: blanks may precede it, nothing may follow. Nothing for any other text. */
inline std::optional<std::uint32_t> settingNumber(const std::string& text)
{
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    std::uint32_t number = 0;
    if (!(stream >> number) || stream.peek() != std::istringstream::traits_type::eof())
        return std::nullopt;
    return number;
}

/** The interval that results when the file has `text`. */
inline std::uint32_t pollIntervalOf(const std::string& text)
{
    return std::clamp(settingNumber(text).value_or(DEFAULT_POLL_INTERVAL), MINIMUM_POLL_INTERVAL,
                      MAXIMUM_POLL_INTERVAL);
}

} // namespace PI
