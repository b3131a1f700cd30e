#include "Terminal/Captions.h"

#include "Base/Text.h"
#include "Terminal/Paragraph.h"

#include <algorithm>

namespace Host::Cli {

std::string captionsText(const std::vector<CaptionedValue>& values, const Screen& screen, std::size_t indent)
{
    constexpr std::size_t gap = 2;
    std::size_t width = 0;
    for (const CaptionedValue& each : values)
        width = std::max(width, displayWidth(printable(each.m_Caption)));
    // If the captions took most of a line, each line would have room for one word of a value only.
    std::size_t column = indent + width + gap;
    const bool below = screen.m_Width && column > *screen.m_Width / 2;
    if (below)
        column = indent + gap;
    std::string text;
    for (const CaptionedValue& each : values) {
        if (each.m_Value.empty())
            continue;
        const std::string caption = printable(each.m_Caption);
        text += std::string(indent, ' ') +
                (below ? paragraph(caption, indent, screen) + std::string(column, ' ')
                       : caption + std::string(column - indent - displayWidth(caption), ' ')) +
                paragraph(printable(each.m_Value), column, screen, each.m_Tone);
    }
    return text;
}

} // namespace Host::Cli
