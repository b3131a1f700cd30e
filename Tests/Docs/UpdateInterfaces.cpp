#include "InterfaceTables.h"

#include <TLX/LanguageSupport.h>

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

constexpr char BEGIN[] = "<!-- table: ";
constexpr char NAME_END[] = " -->\n";
constexpr char END[] = "<!-- end -->\n";

/** `text` with every table made anew. Each table must be in it once, and no other table. */
std::string updated(const std::string& text)
{
    std::map<std::string, std::string> tables = DocsTest::interfaceTables();
    std::string result;
    std::size_t done = 0;
    for (std::size_t begin = text.find(BEGIN); begin != std::string::npos; begin = text.find(BEGIN, done)) {
        const std::size_t name = begin + std::size(BEGIN) - 1;
        const std::size_t content = text.find(NAME_END, name);
        const std::size_t end = text.find(END, name);
        if (content == std::string::npos || end == std::string::npos)
            throw std::runtime_error("a table has no end");
        const auto table = tables.extract(text.substr(name, content - name));
        if (!table)
            throw std::runtime_error("there is no table \"" + text.substr(name, content - name) +
                                     "\", or not twice");
        result += text.substr(done, content - done) + NAME_END + table.mapped() + END;
        done = end + std::size(END) - 1;
    }
    if (!tables.empty())
        throw std::runtime_error("the table \"" + tables.begin()->first + "\" is missing");
    return result + text.substr(done);
}

std::string read(const char* file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

/** usage: UpdateInterfaces SHARE FILE [--check]: makes the tables of FILE anew, or says whether they are as
 * they should be. */
int main(int argc, char** argv)
{
    try {
        if (argc < 3)
            throw std::runtime_error("usage: UpdateInterfaces SHARE FILE [--check]");
        TLX::Language_Support::CLanguageSupport::SetFolder(argv[1]);
        const std::string before = read(argv[2]);
        const std::string after = updated(before);
        if (argc > 3 && before != after)
            throw std::runtime_error(std::string(argv[2]) + " is out of date; ./dev docs renews it");
        if (before != after)
            std::ofstream(argv[2], std::ios::binary) << after;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
