#include "Commands/CommandLine.h"

#include "Base/Failure.h"

namespace {

using namespace Host::Cli;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

Options parse(std::vector<std::string> words)
{
    words.insert(words.begin(), "ostrel");
    return parseCommandLine(words);
}

std::string refusalOf(const std::vector<std::string>& words)
{
    try {
        parse(words);
    } catch (const Host::Failure& failure) {
        EXPECT_EQ(failure.exitCode(), Host::ExitCode::WrongUsage);
        return failure.what();
    }
    return "accepted";
}

std::string textFor(const std::vector<std::string>& words)
{
    try {
        parse(words);
    } catch (const TextAsked& asked) {
        return asked.what();
    }
    return "no text";
}

TEST(CommandLine, KnowsTheCommands)
{
    EXPECT_EQ(parse({"list"}).m_Command, Command::List);
    EXPECT_EQ(parse({"topology"}).m_Command, Command::Topology);
    EXPECT_EQ(parse({"doctor"}).m_Command, Command::Doctor);
    EXPECT_EQ(parse({"check"}).m_Command, Command::Check);
    EXPECT_EQ(parse({"check"}).m_Object, "");
    EXPECT_EQ(parse({"check", "S1"}).m_Object, "S1");
    const Options show = parse({"show", "nvme0n1"});
    EXPECT_EQ(show.m_Command, Command::Show);
    EXPECT_EQ(show.m_Object, "nvme0n1");
    EXPECT_EQ(show.m_Property, std::nullopt);
    EXPECT_EQ(parse({"show", "nvme0n1", "30017"}).m_Property, "30017");
    const Options set = parse({"set", "plugin", "pollinterval", "-60"});
    EXPECT_EQ(set.m_Command, Command::Set);
    EXPECT_EQ(set.m_Object, "plugin");
    EXPECT_EQ(set.m_Property, "pollinterval");
    EXPECT_EQ(set.m_Value, "-60");
    EXPECT_EQ(parse({"journal"}).m_Command, Command::Journal);
    EXPECT_FALSE(parse({"journal"}).m_Follow);
    EXPECT_EQ(parse({"journal"}).m_Since, std::nullopt);
    EXPECT_TRUE(parse({"journal", "--follow"}).m_Follow);
    EXPECT_EQ(parse({"journal", "--since", "2026-01-01T00:00Z"}).m_Since, 1'767'225'600'000U);
    EXPECT_EQ(parse({"watch"}).m_Command, Command::Watch);
    EXPECT_EQ(parse({"watch"}).m_Seconds, std::nullopt);
    EXPECT_EQ(parse({"watch", "--for", "4294967295", "--json"}).m_Seconds, 4294967295U);
}

TEST(CommandLine, TakesOptionsBeforeAndAfterTheCommand)
{
    const std::vector<std::string> options = {
        "--plugin", "p.so",         "--data", ".",      "--simulate", "f.json", "--trace",
        "0x1F",     "--trace-file", "t.log",  "--json", "--reader",   "r.sock"};
    std::vector<std::string> before = options;
    before.emplace_back("list");
    std::vector<std::string> after = options;
    after.insert(after.begin(), "list");
    for (const auto& words : {before, after}) {
        const Options parsed = parse(words);
        EXPECT_EQ(parsed.m_Command, Command::List);
        EXPECT_THAT(parsed.m_Plugins, ElementsAre("p.so"));
        EXPECT_EQ(parsed.m_Data, ".");
        EXPECT_EQ(parsed.m_Fleet, "f.json");
        EXPECT_EQ(parsed.m_Reader, "r.sock");
        EXPECT_EQ(parsed.m_Trace.m_Mask, 31U);
        EXPECT_EQ(parsed.m_Trace.m_File, "t.log");
        EXPECT_TRUE(parsed.m_Json);
    }
}

TEST(CommandLine, TakesSeveralPluginsAndMasks)
{
    const Options options = parse({"--plugin", "a.so", "--trace", "7=0x2", "--plugin", "b.so", "list",
                                   "--trace", "4", "--trace", "313=1", "--trace", "7=3"});
    EXPECT_EQ(options.m_Command, Command::List);
    EXPECT_THAT(options.m_Plugins, ElementsAre("a.so", "b.so"));
    EXPECT_EQ(options.m_Trace.m_Mask, 4U);
    EXPECT_THAT(options.m_Trace.m_ModuleMasks, ElementsAre(Pair(7U, 3U), Pair(313U, 1U)));
    EXPECT_TRUE(options.m_Trace.wanted());
    EXPECT_FALSE(parse({"list", "--trace", "313=0"}).m_Trace.wanted());
}

TEST(CommandLine, OnlyWatchOfRealDrivesKeepsRowsUnasked)
{
    EXPECT_TRUE(keepsRows(parse({"watch"})));
    EXPECT_FALSE(keepsRows(parse({"watch", "--simulate", "f.json"})));
    EXPECT_TRUE(keepsRows(parse({"watch", "--simulate", "f.json", "--data", "d"})));
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"list"}, {"topology"}, {"show", "plugin"}, {"doctor"}}) {
        EXPECT_FALSE(keepsRows(parse(words)));
        std::vector<std::string> told = words;
        told.insert(told.end(), {"--data", "d"});
        EXPECT_TRUE(keepsRows(parse(told)));
    }
    EXPECT_FALSE(keepsRows(parse({"set", "plugin", "pollinterval", "60"})));
    EXPECT_FALSE(keepsRows(parse({"set", "plugin", "pollinterval", "60", "--data", "d"})));
}

TEST(CommandLine, SimulatedDrivesHaveNoSettingsOfTheMachine)
{
    const std::vector<std::string> set = {"set", "plugin", "pollinterval", "60", "--simulate", "f.json"};
    EXPECT_THAT(refusalOf(set), HasSubstr("Name a folder for them with --data."));
    std::vector<std::string> told = set;
    told.insert(told.end(), {"--data", "d"});
    EXPECT_EQ(refusalOf(told), "accepted");
}

TEST(CommandLine, HasQuietDefaults)
{
    const Options options = parse({"list"});
    EXPECT_FALSE(options.m_Data || options.m_Fleet || options.m_Trace.m_File);
    EXPECT_TRUE(options.m_Plugins.empty());
    EXPECT_FALSE(options.m_Trace.wanted());
    EXPECT_FALSE(options.m_Json);
}

TEST(CommandLine, RefusesWhatItDoesNotUnderstand)
{
    EXPECT_THAT(refusalOf({}), HasSubstr("A command is missing"));
    EXPECT_THAT(refusalOf({"--simulate", "list"}),
                StartsWith("A command is missing: \"list\" was taken for the value of --simulate."));
    EXPECT_THAT(refusalOf({"--data", "folder"}), StartsWith("A command is missing. "));
    EXPECT_THAT(refusalOf({"lst"}), HasSubstr("There is no command \"lst\""));
    EXPECT_THAT(refusalOf({"set", "plugin"}), HasSubstr("PROPERTY is required"));
    EXPECT_THAT(refusalOf({"set", "plugin", "pollinterval"}), HasSubstr("VALUE is required"));
    for (const char* seconds : {"", "x", "-1", "1.5", "4294967296"})
        EXPECT_THAT(refusalOf({"watch", "--for", seconds}),
                    HasSubstr("is not a number from 0 to 4294967295"));
    EXPECT_THAT(refusalOf({"list", "--for", "1"}), HasSubstr("--for"));
    EXPECT_THAT(refusalOf({"list", "extra"}), StartsWith("\"extra\" is not expected here."));
    EXPECT_THAT(refusalOf({"list", "--colour"}), HasSubstr("--colour"));
    EXPECT_THAT(refusalOf({"show"}), HasSubstr("OBJECT is required"));
    EXPECT_THAT(refusalOf({"list", "topology"}), HasSubstr("topology"));
    EXPECT_THAT(refusalOf({"list", "--simulate"}), StartsWith("--simulate needs a value."));
    EXPECT_THAT(refusalOf({"watch", "--for"}), StartsWith("--for needs a value."));
    EXPECT_THAT(refusalOf({"list", "--data", "a", "--data", "b"}),
                StartsWith("--data may be given only once."));
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"list", "--json=false"}, {"--json=1", "list"}})
        EXPECT_THAT(refusalOf(words), StartsWith("--json takes no value."));
    EXPECT_THAT(refusalOf({"list", "--trace", "7x"}), HasSubstr("\"7x\" is not a number"));
    for (const char* mask : {"=1", "313=", "313=x", "-1=1", "1=2=3", "4294967296=1"})
        EXPECT_THAT(refusalOf({"list", "--trace", mask}), HasSubstr("is not a number")) << mask;
    EXPECT_THAT(refusalOf({"list", "--trace-file", "t.log"}), HasSubstr("requires --trace"));
    EXPECT_THAT(refusalOf({"list", "--data"}), HasSubstr("--data"));
}

TEST(CommandLine, SuggestsWhatWasMeant)
{
    const std::string help = " \"ostrel --help\" shows the usage.";
    EXPECT_EQ(refusalOf({"lst"}), "There is no command \"lst\". Did you mean \"list\"?" + help);
    EXPECT_EQ(refusalOf({"remove"}), "There is no command \"remove\"." + help);
    for (const std::vector<std::string>& words : {std::vector<std::string>{"--simulte", "f.json", "list"},
                                                  {"list", "--simulte", "f.json"},
                                                  {"--simulte"}})
        EXPECT_EQ(refusalOf(words), "There is no option \"--simulte\". Did you mean \"--simulate\"?" + help);
    EXPECT_EQ(refusalOf({"show", "plugin", "--jsn"}),
              "There is no option \"--jsn\". Did you mean \"--json\"?" + help);
    EXPECT_EQ(refusalOf({"list", "--colour"}), "There is no option \"--colour\"." + help);
}

TEST(CommandLine, PointsToTheHelpOfTheCommandWhoseWordsAreWrong)
{
    EXPECT_THAT(refusalOf({"show"}), EndsWith(" \"ostrel show --help\" shows the usage."));
    EXPECT_THAT(refusalOf({"list", "--trace", "x"}), EndsWith(" \"ostrel --help\" shows the usage."));
    EXPECT_THAT(refusalOf({"list", "extra"}), EndsWith(" \"ostrel list --help\" shows the usage."));
}

TEST(CommandLine, SaysWhereACommandsOwnOptionBelongs)
{
    const std::string help = " \"ostrel --help\" shows the usage.";
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"--for", "1", "watch"}, {"--for", "1"}, {"list", "--for", "1"}})
        EXPECT_EQ(refusalOf(words), "The option \"--for\" belongs after the command \"watch\"." + help);
    EXPECT_EQ(refusalOf({"--for=1", "watch"}),
              "The option \"--for=1\" belongs after the command \"watch\"." + help);
}

TEST(CommandLine, RefusesPathsWithoutAName)
{
    for (const char* option : {"--data", "--simulate", "--reader", "--plugin", "--trace-file"})
        EXPECT_THAT(refusalOf({"list", option, "", "--trace", "1"}),
                    StartsWith(std::string(option) + ": needs a name, not an empty text"));
    EXPECT_EQ(refusalOf({"--data=", "list"}),
              "The option \"--data\" has no value after \"=\". \"ostrel --help\" shows the usage.");
    EXPECT_EQ(refusalOf({"list", "--trace="}),
              "The option \"--trace\" has no value after \"=\". \"ostrel --help\" shows the usage.");
}

TEST(CommandLine, AWordForgesNoLineOfARefusal)
{
    for (const std::vector<std::string>& words : {std::vector<std::string>{"a\nostrel: all is well"},
                                                  {"list", "a\nostrel: all is well"},
                                                  {"list", "--trace", "a\nostrel: all is well"}})
        EXPECT_THAT(refusalOf(words), AllOf(HasSubstr("a?ostrel: all is well"), Not(HasSubstr("\n"))));
}

TEST(CommandLine, HelpIsThereForTheProgramAndEveryCommand)
{
    const std::string help = textFor({"--help"});
    for (const char* word :
         {"list", "topology", "show", "set", "watch", "journal", "check", "doctor", "serve", "--plugin FILE",
          "--data DIR", "--simulate FLEET.json", "--reader SOCKET", "--trace [N=]MASK", "--trace-file FILE",
          "--json", "--version", "Exit codes", "Examples:"})
        EXPECT_THAT(help, HasSubstr(word));
    for (const char* command :
         {"list", "topology", "show", "set", "watch", "journal", "check", "doctor", "serve"}) {
        const std::string text = textFor({command, "--help"});
        EXPECT_THAT(text, HasSubstr(std::string("Usage: ostrel ") + command));
        EXPECT_THAT(text, HasSubstr("Examples:"));
        EXPECT_THAT(text, EndsWith("\n"));
        EXPECT_THAT(text, HasSubstr("--json "));
        EXPECT_THAT(text, HasSubstr("The options of \"ostrel --help\""));
    }
}

TEST(CommandLine, HelpFits80Columns)
{
    for (const std::vector<std::string>& words : {std::vector<std::string>{"-h"},
                                                  {"list", "-h"},
                                                  {"topology", "-h"},
                                                  {"show", "-h"},
                                                  {"set", "-h"},
                                                  {"watch", "-h"},
                                                  {"check", "-h"},
                                                  {"doctor", "-h"}}) {
        const std::string text = textFor(words);
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find('\n', start), text.size());
            EXPECT_LE(end - start, 80U) << text.substr(start, end - start);
            start = end + 1;
        }
    }
}

TEST(CommandLine, DescribesItself)
{
    const Usage described = usage();
    std::vector<std::string> names;
    for (const OptionUsage& option : described.m_Options)
        names.push_back(option.m_Names.back() + " " + option.m_Value + (option.m_IsRepeated ? "*" : ""));
    EXPECT_THAT(names, testing::UnorderedElementsAre("--help ", "--version ", "--plugin FILE*", "--data DIR",
                                                     "--simulate FLEET.json", "--reader SOCKET",
                                                     "--trace [N=]MASK*", "--trace-file FILE", "--json "));
    for (const CommandUsage& command : described.m_Commands) {
        ASSERT_EQ(command.m_Options.size(), command.m_Name == "watch"     ? 1U
                                            : command.m_Name == "journal" ? 2U
                                            : command.m_Name == "serve"   ? 2U
                                                                          : 0U)
            << command.m_Name;
        EXPECT_NE(command.m_Description, "");
    }
    EXPECT_EQ(described.m_Commands.size(), 9U);
    EXPECT_THAT(described.m_Commands.at(4).m_Options.at(0).m_Names, ElementsAre("--for"));
}

TEST(CommandLine, TellsItsVersion)
{
    EXPECT_EQ(textFor({"--version"}), "ostrel 7.16.3\n");
}

} // namespace
