#include "InterfaceTables.h"

#include <TLX/LanguageSupport.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

/**
 * The marks around generated parts in one kind of document. The end mark comes after a text that belongs to
 * the document.
 */
struct Marks
{
    std::string m_Begin;
    std::string m_NameEnd;
    std::string m_End;
};

const Marks MARKDOWN = {"<!-- table: ", " -->\n", "<!-- end -->\n"};
const Marks SCHEMA = {"      \"$comment\": \"Made by ./dev docs: ", "\",\n", "\n    },\n"};

/**
 * `text` with all parts generated again. Each part must be in it exactly once, and there must be no other.
 */
std::string updated(const std::string& text, const Marks& marks, std::map<std::string, std::string> made)
{
    std::string result;
    std::size_t done = 0;
    for (std::size_t begin = text.find(marks.m_Begin); begin != std::string::npos;
         begin = text.find(marks.m_Begin, done)) {
        const std::size_t name = begin + marks.m_Begin.size();
        const std::size_t content = text.find(marks.m_NameEnd, name);
        const std::size_t end = text.find(marks.m_End, name);
        if (content == std::string::npos || end == std::string::npos)
            throw std::runtime_error("a table has no end");
        const auto table = made.extract(text.substr(name, content - name));
        if (!table)
            throw std::runtime_error("there is no table \"" + text.substr(name, content - name) +
                                     "\", or not twice");
        result += text.substr(done, content - done) + marks.m_NameEnd + table.mapped() + marks.m_End;
        done = end + marks.m_End.size();
    }
    if (!made.empty())
        throw std::runtime_error("the table \"" + made.begin()->first + "\" is missing");
    return result + text.substr(done);
}

std::string updated(const std::filesystem::path& file, const std::string& text)
{
    const std::string document = file.stem().string();
    if (file.extension() == ".json")
        return updated(text, SCHEMA, DocsTest::schemaMembers(document));
    return updated(text, MARKDOWN,
                   document == "Metrics"   ? DocsTest::metricTables()
                   : document == "Service" ? DocsTest::serviceTables()
                                           : DocsTest::interfaceTables());
}

std::string read(const char* file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

/**
 * usage: UpdateInterfaces SHARE FILE [--check]: generates the tables of FILE again, or the members if it is a
 * schema. With --check it only says whether they are up to date.
 */
int main(int argc, char** argv)
{
    try {
        if (argc < 3)
            throw std::runtime_error("usage: UpdateInterfaces SHARE FILE [--check]");
        TLX::Language_Support::CLanguageSupport::SetFolder(argv[1]);
        const std::string before = read(argv[2]);
        const std::string after = updated(argv[2], before);
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
