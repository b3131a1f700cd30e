#include "Commands/CommandLine.h"

#include "Base/Failure.h"
#include "Base/Suggestion.h"
#include "Base/Text.h"
#include "Commands/CommandSyntax.h"
#include "Commands/HelpText.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace Host::Cli {
namespace {

constexpr char POINTER[] = " \"ostrel --help\" shows the usage.";

/** The parser, and the options that it fills. */
class Parser
{
public:
    Parser()
    {
        m_App.require_subcommand(1);
        m_App.get_formatter()->column_width(24);
        m_App.get_formatter()->label("SUBCOMMAND", "COMMAND");
        m_App.footer(PROGRAM_FOOTER);
        m_App.set_version_flag("--version", "ostrel " OSTREL_VERSION, "Print the version and exit");
        m_App.set_help_flag("-h,--help", "Print this help and exit");
        addSyntax(m_App, m_Options);
    }

    Options parse(std::vector<std::string> words)
    {
        refuseOddValues(words);
        try {
            take(std::move(words));
        } catch (const CLI::CallForHelp&) {
            throw TextAsked(help());
        } catch (const CLI::CallForVersion& version) {
            throw TextAsked(std::string(version.what()) + '\n');
        } catch (const CLI::ArgumentMismatch&) {
            throw Failure(ExitCode::WrongUsage, printable(mismatch()) + "." + POINTER);
        } catch (const CLI::ParseError& error) {
            throw Failure(ExitCode::WrongUsage, printable(complaint(error)) + "." + suggestion() +
                                                    " \"ostrel " + commandInQuestion(error) +
                                                    "--help\" shows the usage.");
        }
        if (m_Options.m_Command == Command::Set && m_Options.m_Fleet && !m_Options.m_Data)
            throw Failure(ExitCode::WrongUsage,
                          "A simulated fleet has no settings of its own. Name a folder for "
                          "them with --data.");
        return std::move(m_Options);
    }

    /** The description of the command line, for documents and shells. */
    Usage usage() const
    {
        Usage usage;
        usage.m_Options = optionsOf(m_App);
        for (const CLI::App* app : m_App.get_subcommands(nullptr)) {
            CommandUsage command = {app->get_name(), app->get_description(), optionsOf(*app)};
            std::erase_if(command.m_Options, [&](const OptionUsage& own) {
                return m_App.get_option_no_throw(own.m_Names.front()) != nullptr;
            });
            usage.m_Commands.push_back(std::move(command));
        }
        return usage;
    }

    std::string commandIn(std::vector<std::string> words)
    {
        try {
            take(std::move(words));
        } catch (const std::exception&) {
            // An error may come after the command was recognised.
        }
        const std::vector<CLI::App*> commands = m_App.get_subcommands();
        return commands.empty() ? "" : commands.front()->get_name();
    }

private:
    static std::vector<OptionUsage> optionsOf(const CLI::App& app)
    {
        std::vector<OptionUsage> options;
        for (const CLI::Option* option : app.get_options()) {
            if (option->get_positional())
                continue;
            OptionUsage each = {{}, option->get_option_text(), option->get_description(), {}};
            for (const std::string& name : option->get_snames())
                each.m_Names.push_back("-" + name);
            for (const std::string& name : option->get_lnames())
                each.m_Names.push_back("--" + name);
            each.m_IsRepeated = option->get_items_expected_max() > 1;
            for (const OptionDetails& row : OPTION_DETAILS)
                if (each.m_Names.back() == row.m_Option)
                    each.m_Details = row.m_Text;
            options.push_back(std::move(each));
        }
        return options;
    }

    /** The library expects the words in reverse order, without the program's name. */
    void take(std::vector<std::string> words)
    {
        findOptionWithoutValue(words);
        std::reverse(words.begin(), words.end());
        words.pop_back();
        m_App.parse(words);
    }

    /**
     * The library would take the next word in place of an empty value. After a wrong option it would not look
     * at further words.
     */
    void refuseOddValues(const std::vector<std::string>& words) const
    {
        for (const std::string& word : words) {
            const std::size_t sign = word.find('=');
            if (!word.starts_with("--") || sign == std::string::npos)
                continue;
            const std::string name = word.substr(0, sign);
            const CLI::Option* const option = optionNamed(name);
            if (option != nullptr && option->get_items_expected_max() == 0)
                throw Failure(ExitCode::WrongUsage, name + " takes no value." + POINTER);
            if (sign == word.size() - 1)
                throw Failure(ExitCode::WrongUsage,
                              "The option \"" + printable(name) + "\" has no value after \"=\"." + POINTER);
        }
    }

    /** The option with this name, of the program or of a command. Null when there is none. */
    const CLI::Option* optionNamed(const std::string& name) const
    {
        const CLI::App* const command = commandWith(name);
        const CLI::Option* const own = command != nullptr ? command->get_option_no_throw(name) : nullptr;
        return own != nullptr ? own : m_App.get_option_no_throw(name);
    }

    /**
     * The library's error does not hold the option without a value as data. It is the first option that no
     * value follows.
     */
    void findOptionWithoutValue(const std::vector<std::string>& words)
    {
        for (std::size_t i = 0; i < words.size(); ++i) {
            const CLI::Option* const option = isOption(words[i]) ? optionNamed(words[i]) : nullptr;
            const bool takesValue = option != nullptr && option->get_items_expected_max() > 0;
            if (takesValue && (i + 1 == words.size() || optionNamed(words[i + 1]) != nullptr)) {
                m_WithoutValue = words[i];
                return;
            }
        }
    }

    /** The library would report a missing command even if a word is there that is not a command. */
    std::string complaint(const CLI::ParseError& error) const
    {
        const std::vector<std::string> unknown = m_App.remaining(true);
        if (!unknown.empty() && isOption(unknown.front())) {
            if (const CLI::App* command = commandWith(unknown.front()))
                return "The option \"" + unknown.front() + "\" belongs after the command \"" +
                       command->get_name() + "\"";
            return "There is no option \"" + unknown.front() + "\"";
        }
        if (m_App.get_subcommands().empty())
            return unknown.empty() ? "A command is missing" + swallowedCommand()
                                   : "There is no command \"" + unknown.front() + "\"";
        if (!unknown.empty())
            return "\"" + unknown.front() + "\" is not expected here";
        return error.what();
    }

    /** The option that has no value or more than one. */
    std::string mismatch() const
    {
        for (const CLI::App* app : appsInUse())
            for (const CLI::Option* option : app->get_options())
                if (option->results().size() > static_cast<std::size_t>(option->get_items_expected_max()))
                    return option->get_name() + " may be given only once";
        return m_WithoutValue + " needs a value";
    }

    /** Whether a command was taken for an option's value, because the value was forgotten. */
    std::string swallowedCommand() const
    {
        for (const CLI::Option* option : m_App.get_options())
            for (const std::string& value : option->results())
                for (const CLI::App* command : m_App.get_subcommands(nullptr))
                    if (command->get_name() == value)
                        return ": \"" + value + "\" was taken for the value of " + option->get_name();
        return {};
    }

    /** The command that has this option of its own. Null when no command has it. */
    const CLI::App* commandWith(const std::string& word) const
    {
        const std::string option = word.substr(0, word.find('='));
        for (const CLI::App* command : m_App.get_subcommands(nullptr))
            if (command->get_option_no_throw(option) != nullptr)
                return command;
        return nullptr;
    }

    /**
     * The command whose arguments are wrong, and a blank. Empty when the wrong word is an option, because
     * that may belong to any command.
     */
    std::string commandInQuestion(const CLI::ParseError& error) const
    {
        const std::vector<CLI::App*> commands = m_App.get_subcommands();
        const std::vector<std::string> unknown = m_App.remaining(true);
        const bool concernsWords = unknown.empty()
                                       ? dynamic_cast<const CLI::RequiredError*>(&error) != nullptr
                                       : !isOption(unknown.front());
        return commands.empty() || !concernsWords ? "" : commands.front()->get_name() + ' ';
    }

    static bool isOption(const std::string& word) { return word.starts_with('-'); }

    /** A question that suggests what the first unknown word may mean. */
    std::string suggestion() const
    {
        const std::vector<std::string> unknown = m_App.remaining(true);
        if (unknown.empty() || commandWith(unknown.front()) != nullptr)
            return {};
        std::vector<std::string> known;
        if (isOption(unknown.front()))
            for (const CLI::App* app : appsInUse())
                for (const CLI::Option* option : app->get_options())
                    known.push_back(option->get_name());
        else if (m_App.get_subcommands().empty())
            for (const CLI::App* command : m_App.get_subcommands(nullptr))
                known.push_back(command->get_name());
        return didYouMean(unknown.front(), known);
    }

    std::vector<const CLI::App*> appsInUse() const
    {
        std::vector<const CLI::App*> apps = {&m_App};
        for (const CLI::App* command : m_App.get_subcommands())
            apps.push_back(command);
        return apps;
    }

    std::string help() const
    {
        const std::vector<CLI::App*> commands = m_App.get_subcommands();
        const std::string text = commands.empty() ? m_App.help() : commands.front()->help("ostrel");
        return text.ends_with('\n') ? text : text + '\n';
    }

    CLI::App m_App{PROGRAM_HELP, "ostrel"};
    Options m_Options;
    std::string m_WithoutValue;
};

} // namespace

bool keepsRows(const Options& options)
{
    // "set" only writes settings. Rows of simulated drives must not be mixed with those of the machine.
    return options.m_Command != Command::Set && (options.m_Data || options.m_Command == Command::Serve ||
                                                 (options.m_Command == Command::Watch && !options.m_Fleet));
}

Options parseCommandLine(const std::vector<std::string>& words)
{
    return Parser().parse(words);
}

Usage usage()
{
    return Parser().usage();
}

std::string commandIn(const std::vector<std::string>& words)
{
    return Parser().commandIn(words);
}

} // namespace Host::Cli
