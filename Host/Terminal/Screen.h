#pragma once

#include "Base/Output.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Host::Cli {

/** The kind of a piece of text. It decides the colour, if colours are possible. */
enum class Tone
{
    Plain,
    Heading,
    Good,
    Warning,
    Bad,
    Faint,
};

/** Properties of the output for results. */
struct Screen
{
    std::optional<unsigned> m_Width; ///< none: it is no terminal, so lines may have any length
    bool m_Colour = false;
};

/** Whether colours are used. They need a terminal that understands them, and NO_COLOR must not be set. */
Screen detectScreen(const Output& results);

/** `text` in the colour of `tone`, or unchanged without colours. */
std::string toned(const Screen& screen, Tone tone, const std::string& text);

/** The tone for a health or state code. */
Tone toneOfCode(std::uint32_t code);

} // namespace Host::Cli
