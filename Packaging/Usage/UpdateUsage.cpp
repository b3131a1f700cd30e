#include "Completions.h"
#include "Service/Settings.h"

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string_view>

using namespace Host::Cli;

namespace {

/** The lines around what is generated in a manual. */
struct Marks
{
    std::string_view m_Begin;
    std::string_view m_End;
};

constexpr Marks OPTIONS = {".\\\" The options: ./dev docs makes them from the program's own description.\n",
                           ".\\\" End of the options.\n"};
constexpr Marks SETTINGS = {".\\\" The settings: ./dev docs makes them from the program's own table.\n",
                            ".\\\" End of the settings.\n"};

std::string read(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string escaped(const std::string& text)
{
    std::string result;
    for (const char character : text)
        result += character == '\\' ? "\\e" : character == '-' ? "\\-" : std::string(1, character);
    return result;
}

std::string manualEntry(const OptionUsage& option)
{
    std::string entry = ".TP\n";
    for (const std::string& name : option.m_Names)
        entry += (name == option.m_Names.front() ? "\\fB" : ", \\fB") + escaped(name) + "\\fR";
    if (!option.m_Value.empty())
        entry += " \\fI" + option.m_Value + "\\fR";
    return entry + '\n' + escaped(option.m_Description) + ".\n" + escaped(option.m_Details);
}

std::string optionsOf(const Usage& usage)
{
    std::string options;
    for (const OptionUsage& option : usage.m_Options)
        options += manualEntry(option);
    for (const CommandUsage& command : usage.m_Commands)
        for (const OptionUsage& option : command.m_Options)
            options += manualEntry(option);
    return options;
}

std::string settings()
{
    std::string entries;
    for (const Host::Service::SettingRow& row : Host::Service::settingRows())
        entries += ".TP\n\\fB" + escaped(std::string(row.m_Key)) + "\\fR = \\fI" +
                   escaped(std::string(row.m_Value)) + "\\fR\n" + escaped(std::string(row.m_Description)) +
                   "\n.br\nDefault: " + escaped(std::string(row.m_Default)) + ".\n";
    return entries;
}

/** The manual `text` with a part of it generated again. */
std::string manual(const std::string& text, const Marks& marks, const std::string& part)
{
    const std::size_t begin = text.find(marks.m_Begin);
    const std::size_t end = text.find(marks.m_End);
    if (begin == std::string::npos || end == std::string::npos)
        throw std::runtime_error("a manual has no place for what is generated");
    return text.substr(0, begin) + std::string(marks.m_Begin) + part + text.substr(end);
}

} // namespace

/**
 * usage: UpdateUsage SOURCE_FOLDER [--check]: generates the completions, the options in the manual and the
 * settings in the manual of the service again.
 * With --check it only says whether they are up to date.
 */
int main(int argc, char** argv)
{
    try {
        if (argc < 2)
            throw std::runtime_error("usage: UpdateUsage SOURCE_FOLDER [--check]");
        const std::string root = argv[1];
        const Usage usage = Host::Cli::usage();
        const std::string completions = root + "/Packaging/Completions/ostrel.";
        const std::string page = root + "/Docs/ostrel.1.in";
        const std::string service = root + "/Docs/ostrel-serve.1.in";
        const std::map<std::string, std::string> files = {
            {completions + "bash", bashCompletions(usage)},
            {completions + "fish", fishCompletions(usage)},
            {completions + "zsh", zshCompletions(usage)},
            {page, manual(read(page), OPTIONS, optionsOf(usage))},
            {service, manual(read(service), SETTINGS, settings())}};
        for (const auto& [file, text] : files) {
            if (read(file) == text)
                continue;
            if (argc > 2)
                throw std::runtime_error(file + " is out of date; ./dev docs renews it");
            std::ofstream(file, std::ios::binary) << text;
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
