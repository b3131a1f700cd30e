#include "Terminal/StatusLine.h"

#include "Base/Platform.h"
#include "Base/Text.h"

#include <algorithm>
#include <exception>

namespace Host::Cli {
namespace {

constexpr char CLEAR[] = "\r\033[K";

} // namespace

StatusLine::~StatusLine()
{
    try {
        if (m_Text.empty())
            return;
        m_Messages.passesElsewhere(0);
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
    // A terminal's last column is left free, for some wrap there.
    const std::string text = shortened(m_Text, std::max(m_Results.terminalWidth(), 1U) - 1);
    m_Messages.passesElsewhere(displayWidth(text));
    m_Results.write(CLEAR + lines + text + (text.empty() ? "" : "\r"));
}

} // namespace Host::Cli
