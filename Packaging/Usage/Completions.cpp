#include "Completions.h"

#include <vector>

using namespace Host::Cli;

namespace {

/** `text` with each `from` replaced by `to`. */
std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t place = 0; (place = text.find(from, place)) != std::string::npos; place += to.size())
        text.replace(place, from.size(), to);
    return text;
}

/** `text` fit for single quotes, in which a shell changes no other character. */
std::string quoted(const std::string& text)
{
    return replaced(text, "'", "'\\''");
}

bool isFile(const OptionUsage& option)
{
    return option.m_Value == "FILE" || option.m_Value == "FLEET.json" || option.m_Value == "SOCKET";
}

bool isFolder(const OptionUsage& option)
{
    return option.m_Value == "DIR";
}

std::string joined(const std::vector<std::string>& words, const std::string& between)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

std::vector<std::string> commandNames(const Usage& usage)
{
    std::vector<std::string> names;
    for (const CommandUsage& command : usage.m_Commands)
        names.push_back(command.m_Name);
    return names;
}

std::vector<std::string> namesOf(const std::vector<OptionUsage>& options)
{
    std::vector<std::string> names;
    for (const OptionUsage& option : options)
        names.insert(names.end(), option.m_Names.begin(), option.m_Names.end());
    return names;
}

/** The last name of each option for which `is` returns true. The options of commands are included. */
template<typename Condition>
std::vector<std::string> optionsThat(const Usage& usage, const Condition& is)
{
    std::vector<OptionUsage> all = usage.m_Options;
    for (const CommandUsage& command : usage.m_Commands)
        all.insert(all.end(), command.m_Options.begin(), command.m_Options.end());
    std::vector<std::string> names;
    for (const OptionUsage& option : all)
        if (is(option))
            names.push_back(option.m_Names.back());
    return names;
}

constexpr char BASH[] = R"sh(# bash completion for ostrel; made from the program's own description

_ostrel() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} word command=
    local commands="@COMMANDS@"
    local options="@OPTIONS@"

    case $previous in
        @FILES@)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        @FOLDERS@)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return
            ;;
        @VALUES@) return ;;
    esac

    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ " $commands " != *" $word "* ]] || command=$word
    done
@OWN@    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    elif [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$current")
    elif [[ $command == show ]]; then
        mapfile -t COMPREPLY < <(compgen -W "plugin $(compgen -G '/dev/nvme*n*')" -- "$current")
    elif [[ $command == set ]]; then
        case $previous in
            set) mapfile -t COMPREPLY < <(compgen -W plugin -- "$current") ;;
            plugin) mapfile -t COMPREPLY < <(compgen -W pollinterval -- "$current") ;;
        esac
    fi
}

complete -F _ostrel ostrel
)sh";

constexpr char ZSH[] = R"sh(#compdef ostrel
# Made from the program's own description.

_ostrel_commands() {
    local -a commands=(
@COMMANDS@    )
    _describe -t commands command commands
}

_ostrel_arguments() {
    case $words[CURRENT-1] in
        show) compadd -- plugin /dev/nvme*n*(N) ;;
        set) compadd -- plugin ;;
        plugin) (( ! $words[(I)set] )) || compadd -- pollinterval ;;
    esac
}

local -a own=()
@OWN@
_arguments \
    $own \
@OPTIONS@    '1:command:_ostrel_commands' \
    '*:argument:_ostrel_arguments'
)sh";

std::string zshOption(const OptionUsage& option)
{
    const std::string what = "[" + replaced(quoted(option.m_Description), "]", "\\]") + "]";
    const std::string action = isFile(option)           ? ":file:_files"
                               : isFolder(option)       ? ":folder:_files -/"
                               : option.m_Value.empty() ? ""
                                                        : ":value: ";
    if (option.m_Names.size() > 1)
        return "'(" + joined(option.m_Names, " ") + ")'{" + joined(option.m_Names, ",") + "}'" + what +
               action + "'";
    return std::string("'") + (option.m_IsRepeated ? "*" : "") + option.m_Names.front() + what + action + "'";
}

std::string fishOption(const OptionUsage& option)
{
    std::string line;
    for (const std::string& name : option.m_Names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (isFile(option))
        line += " -r -F";
    else if (isFolder(option))
        line += " -x -a '(__fish_complete_directories)'";
    else if (!option.m_Value.empty())
        line += " -x";
    return line + " -d '" + replaced(option.m_Description, "'", "\\'") + "'\n";
}

} // namespace

std::string bashCompletions(const Usage& usage)
{
    std::string own;
    for (const CommandUsage& command : usage.m_Commands)
        if (!command.m_Options.empty())
            own += "    [[ $command != " + command.m_Name + " ]] || options+=\" " +
                   joined(namesOf(command.m_Options), " ") + "\"\n";
    const auto isOther = [](const OptionUsage& option) {
        return !option.m_Value.empty() && !isFile(option) && !isFolder(option);
    };
    std::string text = replaced(BASH, "@COMMANDS@", joined(commandNames(usage), " "));
    text = replaced(text, "@OPTIONS@", joined(namesOf(usage.m_Options), " "));
    text = replaced(text, "@FILES@", joined(optionsThat(usage, isFile), " | "));
    text = replaced(text, "@FOLDERS@", joined(optionsThat(usage, isFolder), " | "));
    text = replaced(text, "@VALUES@", joined(optionsThat(usage, isOther), " | "));
    return replaced(text, "@OWN@", own);
}

std::string zshCompletions(const Usage& usage)
{
    std::string commands;
    std::string own;
    for (const CommandUsage& command : usage.m_Commands) {
        commands += "        '" + command.m_Name + ":" + quoted(command.m_Description) + "'\n";
        for (const OptionUsage& option : command.m_Options)
            own += "(( ! $words[(I)" + command.m_Name + "] )) || own+=(" + zshOption(option) + ")\n";
    }
    std::string options;
    for (const OptionUsage& option : usage.m_Options)
        options += "    " + zshOption(option) + " \\\n";
    return replaced(replaced(replaced(ZSH, "@COMMANDS@", commands), "@OWN@", own), "@OPTIONS@", options);
}

std::string fishCompletions(const Usage& usage)
{
    std::string text =
        "# fish completion for ostrel; made from the program's own description\n\nset -l commands " +
        joined(commandNames(usage), " ") + "\n\ncomplete -c ostrel -f\n";
    for (const OptionUsage& option : usage.m_Options)
        text += "complete -c ostrel" + fishOption(option);
    text += '\n';
    for (const CommandUsage& command : usage.m_Commands)
        text += "complete -c ostrel -n \"not __fish_seen_subcommand_from $commands\" -a " + command.m_Name +
                " -d '" + replaced(command.m_Description, "'", "\\'") + "'\n";
    text +=
        R"sh(complete -c ostrel -n '__fish_seen_subcommand_from show' -a 'plugin (for disk in /dev/nvme*n*; echo $disk; end)'
complete -c ostrel -n '__fish_seen_subcommand_from set; and not __fish_seen_subcommand_from plugin' -a plugin
complete -c ostrel -n '__fish_seen_subcommand_from set; and __fish_seen_subcommand_from plugin' -a pollinterval
)sh";
    for (const CommandUsage& command : usage.m_Commands)
        for (const OptionUsage& option : command.m_Options)
            text += "complete -c ostrel -n '__fish_seen_subcommand_from " + command.m_Name + "'" +
                    fishOption(option);
    return text;
}
