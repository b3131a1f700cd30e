#include "Commands/CommandSyntax.h"

#include "Base/Instant.h"
#include "Base/Text.h"
#include "Commands/HelpText.h"
#include "Commands/TraceMask.h"

#include <TLX/Clock.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Host::Cli {
namespace {

std::optional<std::uint32_t> parseSeconds(const std::string& text)
{
    return in32Bits(parseNumber(text, 10));
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

/** Adds options and commands to a parser. Their values go to `options`. */
class Syntax
{
public:
    Syntax(CLI::App& app, Options& options) : m_App(app), m_Options(options) {}

    void addOptions()
    {
        addList(
            "--plugin",
            [&options = m_Options](const std::string& text) {
                options.m_Plugins.push_back(pathFromUtf8(text));
            },
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
                "--trace",
                [&options = m_Options](const std::string& text) { addTraceMask(text, options.m_Trace); },
                "Write trace lines of these levels (of module N)")
                ->option_text("[N=]MASK")
                ->check(refuseBadMask);
        addPath("--trace-file", m_Options.m_Trace.m_File, "File for trace lines instead of standard error")
            ->option_text("FILE")
            ->needs(trace);
        addJson(m_App);
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

private:
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
        app->parse_complete_callback([&options = m_Options, command] { options.m_Command = command; });
        return app;
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
                [&options = m_Options](const std::string& text) {
                    options.m_Listen = Service::parseEndpoint(text);
                },
                "Answer HTTP at this address instead of the one in the settings")
            ->option_text("ADDRESS:PORT")
            ->check(refuseBadEndpoint);
        serve
            ->add_option_function<std::string>(
                "--settings",
                [&options = m_Options](const std::string& text) { options.m_Settings = pathFromUtf8(text); },
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
                "--for",
                [&options = m_Options](const std::string& text) { options.m_Seconds = parseSeconds(text); },
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
                [&options = m_Options](const std::string& text) {
                    options.m_Since = parseInstant(text, TLX::Misc::now());
                },
                "Begin at this time, or this long ago (2h, 7d)")
            ->option_text("TIME")
            ->check(refuseBadInstant);
        journal->add_flag("--follow", m_Options.m_Follow, "Go on with what the service tells from now on")
            ->disable_flag_override();
    }

    CLI::App& m_App;
    Options& m_Options;
};

} // namespace

void addSyntax(CLI::App& app, Options& options)
{
    Syntax syntax(app, options);
    syntax.addOptions();
    syntax.addCommands();
}

} // namespace Host::Cli
