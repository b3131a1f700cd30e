#include "Cli/StatusLine.h"

#include "Core/Platform.h"
#include "Core/Text.h"

#include <algorithm>
#include <exception>

namespace Host::Cli {
namespace {

constexpr char CLEAR[] = "\r\033[K";

} // namespace

StatusLine::~StatusLine()
{
    try {
        if (!m_Text.empty())
            m_Results.write(CLEAR);
    } catch (const std::exception&) {
        // Nobody is left to see it.
        return;
    }
}

void StatusLine::show(const std::string& text)
{
    m_Text = text;
    printAbove({});
}

void StatusLine::printAbove(const std::string& lines)
{
    if (!m_Shown) {
        m_Results.write(lines);
        return;
    }
    // The cursor waits at the line's beginning, so that others' messages overwrite the line. A terminal's
    // last column is left free, for some wrap there.
    const std::size_t width = std::max(m_Results.terminalWidth(), 1U) - 1;
    m_Results.write(CLEAR + lines + (m_Text.empty() ? "" : shortened(m_Text, width) + '\r'));
}

} // namespace Host::Cli
