#pragma once

#include "Terminal/Screen.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Host::Cli {

struct Column
{
    std::string m_Title;
    bool m_Right = false;      ///< numbers
    std::size_t m_Minimum = 0; ///< the least width to which it may be shortened; 0: it is never shortened
    unsigned m_Sacrifice = 0;  ///< order in which columns are left out on a narrow terminal, beginning with
                               ///< 1; 0: never left out
};

struct Cell
{
    std::string m_Text;
    Tone m_Tone = Tone::Plain;
};

/**
 * Lines with aligned columns. If the output is no terminal, every text is whole. On a terminal, long texts
 * are shortened until a line fits. If that is not enough, columns are left out and named below the table.
 */
class Table
{
public:
    explicit Table(std::vector<Column> columns) : m_Columns(std::move(columns)) {}

    /** One cell for each column. */
    void add(std::vector<Cell> row) { m_Rows.push_back(std::move(row)); }

    std::string text(const Screen& screen) const;

private:
    struct Layout
    {
        std::vector<std::size_t> m_Shown;  ///< indices of the columns that are shown
        std::vector<std::size_t> m_Widths; ///< width of every column
        std::size_t m_Gap = 2;
    };

    std::vector<std::size_t> naturalWidths() const;
    Layout layout(const Screen& screen) const;
    bool squeeze(Layout& layout, std::size_t available) const;
    std::string line(const Screen& screen, const Layout& layout, const std::vector<Cell>& cells) const;

    std::vector<Column> m_Columns;
    std::vector<std::vector<Cell>> m_Rows;
};

} // namespace Host::Cli
