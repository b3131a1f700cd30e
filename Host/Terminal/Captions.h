#pragma once

#include "Terminal/Screen.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Host::Cli {

/** A value and its caption. Both may hold any text. */
struct CaptionedValue
{
    std::string m_Caption;
    std::string m_Value;
    Tone m_Tone = Tone::Plain;
};

/**
 * Prints each value on a line after its caption. Captions are aligned, after `indent` blanks. On a narrow
 * terminal the value is below its caption. Empty values are left out.
 */
std::string captionsText(const std::vector<CaptionedValue>& values, const Screen& screen, std::size_t indent);

} // namespace Host::Cli
