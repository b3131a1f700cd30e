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
    std::size_t m_Minimum = 0; ///< may be shortened to this width; 0: never
    unsigned m_Sacrifice = 0;  ///< left out first (1), second (2) ... where it is too narrow; 0: never
};

struct Cell
{
    std::string m_Text;
    Tone m_Tone = Tone::Plain;
};

/**
 * Lines of aligned columns. Off a terminal every text is whole; on one, long texts are shortened, then
 * columns left out (and named below the table), until a line fits.
 */
class Table
{
public:
    explicit Table(std::vector<Column> columns) : m_Columns(std::move(columns)) {}

    /** One cell a column. */
    void add(std::vector<Cell> row) { m_Rows.push_back(std::move(row)); }

    std::string text(const Screen& screen) const;

private:
    struct Layout
    {
        std::vector<std::size_t> m_Shown;  ///< indices of the columns
        std::vector<std::size_t> m_Widths; ///< of every column
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
