#include "Terminal/Table.h"

#include "Base/Text.h"
#include "Terminal/Paragraph.h"

#include <algorithm>
#include <numeric>

namespace Host::Cli {

std::vector<std::size_t> Table::naturalWidths() const
{
    std::vector<std::size_t> widths;
    for (std::size_t i = 0; i < m_Columns.size(); ++i) {
        std::size_t width = displayWidth(m_Columns[i].m_Title);
        for (const std::vector<Cell>& row : m_Rows)
            width = std::max(width, displayWidth(printable(row[i].m_Text)));
        widths.push_back(width);
    }
    return widths;
}

/**
 * Narrows the columns to `available`, the one with the widest text first. Returns whether that was possible.
 */
bool Table::squeeze(Layout& layout, std::size_t available) const
{
    const auto total = [&] {
        return std::accumulate(
            layout.m_Shown.begin(), layout.m_Shown.end(), layout.m_Gap * (layout.m_Shown.size() - 1),
            [&](std::size_t sum, std::size_t column) { return sum + layout.m_Widths[column]; });
    };
    if (total() > available)
        layout.m_Gap = 1;
    while (total() > available) {
        std::size_t widest = m_Columns.size();
        for (const std::size_t column : layout.m_Shown) {
            const std::size_t minimum = m_Columns[column].m_Minimum;
            if (minimum > 0 && layout.m_Widths[column] > minimum &&
                (widest == m_Columns.size() || layout.m_Widths[column] > layout.m_Widths[widest]))
                widest = column;
        }
        if (widest == m_Columns.size())
            return false;
        --layout.m_Widths[widest];
    }
    return true;
}

Table::Layout Table::layout(const Screen& screen) const
{
    Layout whole;
    whole.m_Shown.resize(m_Columns.size());
    std::iota(whole.m_Shown.begin(), whole.m_Shown.end(), std::size_t{0});
    whole.m_Widths = naturalWidths();
    if (!screen.m_Width)
        return whole;

    for (unsigned sacrificed = 0;; ++sacrificed) {
        std::erase_if(whole.m_Shown, [&](std::size_t column) {
            return m_Columns[column].m_Sacrifice != 0 && m_Columns[column].m_Sacrifice <= sacrificed;
        });
        Layout narrow = whole;
        const bool more = std::any_of(whole.m_Shown.begin(), whole.m_Shown.end(),
                                      [&](std::size_t column) { return m_Columns[column].m_Sacrifice != 0; });
        if (squeeze(narrow, *screen.m_Width) || !more)
            return narrow;
    }
}

std::string Table::line(const Screen& screen, const Layout& layout, const std::vector<Cell>& cells) const
{
    std::string line;
    for (const std::size_t column : layout.m_Shown) {
        const Cell& cell = cells[column];
        const std::string shown = shortened(printable(cell.m_Text), layout.m_Widths[column]);
        const std::string padding(layout.m_Widths[column] - displayWidth(shown), ' ');
        const std::string text = toned(screen, cell.m_Tone, shown);
        if (column != layout.m_Shown.front())
            line += std::string(layout.m_Gap, ' ');
        if (m_Columns[column].m_Right)
            line += padding + text;
        else
            line += text + (column == layout.m_Shown.back() ? "" : padding);
    }
    return line + '\n';
}

std::string Table::text(const Screen& screen) const
{
    const Layout shape = layout(screen);
    std::vector<Cell> titles;
    for (const Column& column : m_Columns)
        titles.push_back({column.m_Title, Tone::Heading});
    std::string text = line(screen, shape, titles);
    for (const std::vector<Cell>& row : m_Rows)
        text += line(screen, shape, row);

    std::string missing;
    for (std::size_t i = 0; i < m_Columns.size(); ++i)
        if (std::find(shape.m_Shown.begin(), shape.m_Shown.end(), i) == shape.m_Shown.end())
            missing += (missing.empty() ? "" : ", ") + m_Columns[i].m_Title;
    if (!missing.empty())
        text += paragraph("Too narrow for: " + missing, 0, screen, Tone::Faint);
    return text;
}

} // namespace Host::Cli
