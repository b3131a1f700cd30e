#include "Commands/CommandLine.h"

#include "Base/Failure.h"
#include "Base/Instant.h"
#include "Base/Suggestion.h"
#include "Base/Text.h"
#include "Commands/HelpText.h"

#include <TLX/Clock.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <limits>

namespace Host::Cli {
namespace {

constexpr char POINTER[] = " \"ostrel --help\" shows the usage.";

std::optional<std::uint32_t> fitting(std::optional<std::uint64_t> number)
{
    return number && *number <= std::numeric_limits<std::uint32_t>::max()
               ? std::optional(static_cast<std::uint32_t>(*number))
               : std::nullopt;
}

std::optional<std::uint32_t> parseSeconds(const std::string& text)
{
    return fitting(parseNumber(text, 10));
}

std::string refuseNoPath(const std::string& text)
{
    return text.empty() ? "needs a name, not an empty text" : std::string();
}

std::string refuseBadMask(const std::string& text)
{
    TraceOptions ignored;
    return addTraceMask(text, ignored)
               ? std::string()
               : "\"" + text + "\" is not a number from 0 to 4294967295 or 0x0 to 0xFFFFFFFF";
}

std::string refuseBadSeconds(const std::string& text)
{
    return parseSeconds(text) ? std::string() : "\"" + text + "\" is not a number from 0 to 4294967295";
}

std::string refuseBadInstant(const std::string& text)
{
    return parseInstant(text, TLX::Misc::now())
               ? std::string()
               : "\"" + text + "\" is no time, such as 2h, 7d, 2026-01-31 or 2026-01-31T12:00";
}

std::string refuseBadEndpoint(const std::string& text)
{
    return Service::parseEndpoint(text)
               ? std::string()
               : "\"" + text + "\" is not of the form ADDRESS:PORT, such as 127.0.0.1:9713 or [::1]:9713";
}

/** The parser and the options that it fills. */
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
        addOptions();
        addCommands();
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

    CLI::Option* addPath(const char* name, std::optional<std::filesystem::path>& path,
                         const char* description)
    {
        return m_App
            .add_option_function<std::string>(
                name, [&path](const std::string& text) { path = pathFromUtf8(text); }, description)
            ->check(refuseNoPath);
    }

    /** An option that may be given several times, each time with one value. */
    CLI::Option* addList(const char* name, const std::function<void(const std::string&)>& add,
                         const char* description)
    {
        return m_App
            .add_option_function<std::vector<std::string>>(
                name,
                [add](const std::vector<std::string>& texts) {
                    std::for_each(texts.begin(), texts.end(), add);
                },
                description)
            ->allow_extra_args(false);
    }

    void addOptions()
    {
        addList(
            "--plugin",
            [this](const std::string& text) { m_Options.m_Plugins.push_back(pathFromUtf8(text)); },
            "Load this plug-in in addition to the installed one")
            ->option_text("FILE")
            ->check(refuseNoPath);
        addPath("--data", m_Options.m_Data, "Folder for database, adapter numbers and settings")
            ->option_text("DIR");
        addPath("--simulate", m_Options.m_Fleet, "Show the drives that a fleet file describes")
            ->option_text("FLEET.json");
        addPath("--reader", m_Options.m_Reader, "Ask the drives through the reader at this socket")
            ->option_text("SOCKET");
        CLI::Option* trace =
            addList(
                "--trace", [this](const std::string& text) { addTraceMask(text, m_Options.m_Trace); },
                "Write trace lines of these levels (of module N)")
                ->option_text("[N=]MASK")
                ->check(refuseBadMask);
        addPath("--trace-file", m_Options.m_Trace.m_File, "File for trace lines instead of standard error")
            ->option_text("FILE")
            ->needs(trace);
        addJson(m_App);
    }

    void addJson(CLI::App& app)
    {
        app.add_flag("--json", m_Options.m_Json, "Print JSON (watch, journal: one object per line)")
            ->disable_flag_override();
    }

    CLI::App* addCommand(Command command, const char* name, const char* description, const char* footer)
    {
        CLI::App* app = m_App.add_subcommand(name, description);
        app->fallthrough();
        app->footer(footer);
        app->group("Commands");
        // The help of a command lists only its own options, and this one must be among them.
        addJson(*app);
        app->parse_complete_callback([this, command] { m_Options.m_Command = command; });
        return app;
    }

    void addCommands()
    {
        addCommand(Command::List, "list", "Show one line for each drive", LIST_FOOTER);
        addCommand(Command::Topology, "topology", "Show every object with its properties", TOPOLOGY_FOOTER);
        CLI::App* show = addCommand(Command::Show, "show", "Show the properties of one object", SHOW_FOOTER);
        show->add_option("OBJECT", m_Options.m_Object, "A drive or another object; see below")
            ->required()
            ->option_text(" ");
        show->add_option("PROPERTY", m_Options.m_Property, "Number or caption of one property")
            ->option_text(" ");
        addSetCommand();
        addWatchCommand();
        addJournalCommand();
        addCommand(Command::Check, "check", "Print a verdict for monitoring systems", CHECK_FOOTER)
            ->add_option("OBJECT", m_Options.m_Object, "A drive, as in \"show\"; without it every drive")
            ->option_text(" ");
        addCommand(Command::Doctor, "doctor", "Check what can be seen here, and say what is wrong",
                   DOCTOR_FOOTER);
        addServeCommand();
    }

    void addSetCommand()
    {
        CLI::App* set = addCommand(Command::Set, "set", "Set a property to another value", SET_FOOTER);
        set->add_option("OBJECT", m_Options.m_Object, "As in \"show\"; at present only \"plugin\"")
            ->required()
            ->option_text(" ");
        set->add_option("PROPERTY", m_Options.m_Property, "Number or caption of the property")
            ->required()
            ->option_text(" ");
        set->add_option("VALUE", m_Options.m_Value, "The new value")->required()->option_text(" ");
    }

    void addServeCommand()
    {
        CLI::App* serve = addCommand(Command::Serve, "serve",
                                     "Run the service that watches, tells and answers", SERVE_FOOTER);
        serve
            ->add_option_function<std::string>(
                "--listen",
                [this](const std::string& text) { m_Options.m_Listen = Service::parseEndpoint(text); },
                "Answer HTTP at this address instead of the one in the settings")
            ->option_text("ADDRESS:PORT")
            ->check(refuseBadEndpoint);
        serve
            ->add_option_function<std::string>(
                "--settings", [this](const std::string& text) { m_Options.m_Settings = pathFromUtf8(text); },
                "Read the settings from this file instead of serve.ini in the data folder")
            ->option_text("FILE")
            ->check(refuseNoPath);
    }

    void addWatchCommand()
    {
        CLI::App* watch =
            addCommand(Command::Watch, "watch", "Print each event of the drives when it comes", WATCH_FOOTER);
        watch
            ->add_option_function<std::string>(
                "--for", [this](const std::string& text) { m_Options.m_Seconds = parseSeconds(text); },
                "End after this number of seconds")
            ->option_text("SECONDS")
            ->check(refuseBadSeconds);
    }

    void addJournalCommand()
    {
        CLI::App* journal =
            addCommand(Command::Journal, "journal", "Print what the service has told", JOURNAL_FOOTER);
        journal
            ->add_option_function<std::string>(
                "--since",
                [this](const std::string& text) { m_Options.m_Since = parseInstant(text, TLX::Misc::now()); },
                "Begin at this time, or this long ago (2h, 7d)")
            ->option_text("TIME")
            ->check(refuseBadInstant);
        journal->add_flag("--follow", m_Options.m_Follow, "Go on with what the service tells from now on")
            ->disable_flag_override();
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

std::optional<std::uint32_t> parseMask(std::string_view text)
{
    return fitting(startsWithIgnoringCase(text, "0x") ? parseHexadecimal(text) : parseNumber(text, 10));
}

bool keepsRows(const Options& options)
{
    // "set" only writes settings. Rows of simulated drives must not be mixed with those of the machine.
    return options.m_Command != Command::Set && (options.m_Data || options.m_Command == Command::Serve ||
                                                 (options.m_Command == Command::Watch && !options.m_Fleet));
}

bool addTraceMask(std::string_view text, TraceOptions& trace)
{
    const std::size_t sign = text.find('=');
    const bool named = sign != std::string_view::npos;
    const auto mask = parseMask(named ? text.substr(sign + 1) : text);
    const auto module = named ? parseMask(text.substr(0, sign)) : std::nullopt;
    if (!mask || (named && !module))
        return false;
    if (module)
        trace.m_ModuleMasks[*module] = *mask;
    else
        trace.m_Mask = *mask;
    return true;
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
