#pragma once

#include "Base/Output.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Host::Cli {

/** What a piece of text stands for; shown in colour where colour is to be had. */
enum class Tone
{
    Plain,
    Heading,
    Good,
    Warning,
    Bad,
    Faint,
};

/** What the results are shown on. */
struct Screen
{
    std::optional<unsigned> m_Width; ///< none: no terminal, lines may be of any length
    bool m_Colour = false;
};

/** Colour needs a terminal that understands it, and no NO_COLOR. */
Screen detectScreen(const Output& results);

/** `text` in the colour of `tone`; as it is where there is no colour. */
std::string toned(const Screen& screen, Tone tone, const std::string& text);

/** The tone of a health or state code. */
Tone toneOfCode(std::uint32_t code);

} // namespace Host::Cli
