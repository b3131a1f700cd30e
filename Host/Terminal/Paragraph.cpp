#include "Terminal/Paragraph.h"

#include "Base/Text.h"

#include <algorithm>

namespace Host::Cli {

std::string paragraph(const std::string& text, std::size_t indent, const Screen& screen, Tone tone)
{
    if (!screen.m_Width)
        return toned(screen, tone, text) + '\n';
    std::string lines;
    std::size_t column = indent;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(' ', start), text.size());
        const std::string word = text.substr(start, end - start);
        const std::size_t width = displayWidth(word);
        if (start > 0 && column + 1 + width > *screen.m_Width) {
            lines += '\n' + std::string(indent, ' ');
            column = indent;
        } else if (start > 0) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += width;
        start = end + 1;
    }
    return toned(screen, tone, lines) + '\n';
}

} // namespace Host::Cli
