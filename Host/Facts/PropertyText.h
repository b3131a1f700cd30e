#pragma once

#include <PI/Property.h>

#include <cstdint>
#include <string>

namespace Host::Cli {

/** A property's caption; of one without a caption, the program's own name for it. */
std::string captionText(const PI::CProperty& property);

/** A property's value as people read it, in a unit that suits its size. */
std::string valueText(const PI::CProperty& property);

/** `number` with two decimals at most. */
std::string numberText(double number);

/** `number` and its unit; a percent sign follows without a blank. */
std::string withUnit(const std::string& number, std::uint32_t unit);

/** A span of time in the unit that people would choose: days, months or years. */
std::string durationText(std::uint64_t hours);

/** Hours and, from a day on, the span of time in people's unit behind them. */
std::string hoursText(std::uint64_t hours);

/** A size in the largest binary unit in which it is at least 1, in three digits. */
std::string sizeText(std::uint64_t mebibytes);

} // namespace Host::Cli
