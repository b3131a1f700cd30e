#pragma once

#include "Terminal/Screen.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Host::Cli {

/** A value and what it is called; both may hold any text. */
struct CaptionedValue
{
    std::string m_Caption;
    std::string m_Value;
    Tone m_Tone = Tone::Plain;
};

/**
 * A line for each value, captions aligned, after `indent` blanks. On a narrow terminal values stand below
 * their captions. A value that is empty is left out.
 */
std::string captionsText(const std::vector<CaptionedValue>& values, const Screen& screen, std::size_t indent);

} // namespace Host::Cli
