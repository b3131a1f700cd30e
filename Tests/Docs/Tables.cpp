#include "Tables.h"

#include <PI/PluginHelper.h>

namespace DocsTest {
namespace {

std::string line(const Row& cells)
{
    std::string text = "|";
    for (const std::string& cell : cells)
        text += " " + cell + (cell.empty() ? "|" : " |");
    return text + '\n';
}

} // namespace

std::string table(const Row& titles, const std::vector<Row>& rows)
{
    std::string text = line(titles) + line(Row(titles.size(), "---"));
    for (const Row& row : rows)
        text += line(row);
    return text;
}

std::string catalogueText(std::uint32_t number)
{
    return PI::PropertyValueToString(number);
}

std::string coded(std::uint32_t number)
{
    return std::to_string(number) + " " + catalogueText(number);
}

} // namespace DocsTest
