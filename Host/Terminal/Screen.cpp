#include "Terminal/Screen.h"

#include "Facts/Verdict.h"

#include <cstdlib>

namespace Host::Cli {
namespace {

bool userAllowsColour()
{
    const char* const noColour = std::getenv("NO_COLOR");
    return noColour == nullptr || *noColour == '\0';
}

const char* escapeOf(Tone tone)
{
    switch (tone) {
    case Tone::Plain:
        return "";
    case Tone::Heading:
        return "\033[1m";
    case Tone::Good:
        return "\033[32m";
    case Tone::Warning:
        return "\033[33m";
    case Tone::Bad:
        return "\033[1;31m";
    case Tone::Faint:
        return "\033[2m";
    }
    return "";
}

} // namespace

Screen detectScreen(const Output& results)
{
    if (!results.isTerminal())
        return {};
    return {results.terminalWidth(), results.showsColours() && userAllowsColour()};
}

std::string toned(const Screen& screen, Tone tone, const std::string& text)
{
    if (!screen.m_Colour || tone == Tone::Plain || text.empty())
        return text;
    return escapeOf(tone) + text + "\033[0m";
}

Tone toneOfCode(std::uint32_t code)
{
    switch (verdictOfCode(code)) {
    case Verdict::Ok:
        return Tone::Good;
    case Verdict::Warning:
        return Tone::Warning;
    case Verdict::Critical:
        return Tone::Bad;
    case Verdict::Unknown:
        return Tone::Plain;
    }
    return Tone::Plain;
}

} // namespace Host::Cli
