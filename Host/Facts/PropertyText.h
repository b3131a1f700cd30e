#pragma once

#include <PI/Property.h>

#include <cstdint>
#include <string>

namespace Host::Cli {

/** The caption of a property. If it has none, a name that the program gives it. */
std::string captionText(const PI::CProperty& property);

/** A property's value for people, in a unit that suits its size. */
std::string valueText(const PI::CProperty& property);

/** `number` with at most two decimals. */
std::string numberText(double number);

/** `number` and its unit; a percent sign follows without a blank. */
std::string withUnit(const std::string& number, std::uint32_t unit);

/** A span of time in days, months or years, whichever suits its size. */
std::string durationText(std::uint64_t hours);

/** Hours. From a day on, the same span in days, months or years follows. */
std::string hoursText(std::uint64_t hours);

/** A size with three digits, in the largest binary unit in which it is at least 1. */
std::string sizeText(std::uint64_t mebibytes);

} // namespace Host::Cli
