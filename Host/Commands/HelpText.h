#pragma once

/** The help texts of the program and of each command, besides the list of options. */
namespace Host::Cli {

inline constexpr char PROGRAM_HELP[] = "Shows NVMe drives, their health, and what is wrong with them.";

inline constexpr char PROGRAM_FOOTER[] =
    R"(These options may come before or after the command. The options of a single
command must come after it. "ostrel COMMAND --help" explains a command.

Exit codes: 0 done, 1 a request failed, 2 wrong usage, 3 no supported hardware,
4 no permission, 5 no such object. Those of "check" are 0 OK, 1 WARNING,
2 CRITICAL, 3 UNKNOWN.

Examples:
  sudo ostrel list
  sudo ostrel show nvme0n1
  ostrel list --json --simulate fleet.json)";

inline constexpr char LIST_FOOTER[] =
    R"(On a terminal, long texts are shortened, and the reasons of a bad health are
below the table. Elsewhere, and with --json, no text is shortened.
The options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel list
  sudo ostrel list --json | jq '.drives[] | select(.healthCode != 40024).serial')";

inline constexpr char TOPOLOGY_FOOTER[] =
    R"(The options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel topology
  sudo ostrel topology --json | jq '.objects[].id')";

inline constexpr char SHOW_FOOTER[] =
    R"(A serial number, a device (nvme0n1), its controller (nvme0) or a PCI address
(0000:01:00.0, 01:00.0) names an adapter and its drive. An identifier or a
location names one object. "plugin" names the plug-in itself. With PROPERTY,
only the value of that property is printed.
The options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel show plugin
  sudo ostrel show nvme0n1
  sudo ostrel show /dev/nvme0n1 temperature
  sudo ostrel show "PCI:Bus=1&Device=0&Function=0" 30017 --json)";

inline constexpr char SET_FOOTER[] =
    R"(PROPERTY is a number or a caption. Case and blanks do not matter. A value above
or below the property's limits is replaced by the nearest limit. At present only
the poll interval of the plug-in (2 to 255 seconds) can be set. It is kept in
"Ostrel.ini" in the data folder (--data DIR, otherwise the system's folder).
A "watch" that is running uses it after its next start only. A service that
keeps the data folder sets it itself, at once.
The options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel set plugin pollinterval 60
  sudo ostrel --data /srv/ostrel set plugin 30005 10)";

inline constexpr char WATCH_FOOTER[] =
    R"(First prints a line for each thing that is already wrong with the drives, then
one for each change: local time, severity, what happened, and to which drive.
Nothing is reported twice. With --json each line is one JSON object. Ends with
Ctrl+C or a termination signal, or after SECONDS. Database, adapter numbers and
"Ostrel.ini" are in the data folder (--data DIR, otherwise the system's folder).
For a simulated fleet nothing is kept unless --data is given. "Ostrel.ini" is
read at the start only. So a later change of it, also by "set", has an effect
after the next start. While a service keeps the data folder, "watch" prints the
entries of its journal from now on.
The options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel watch
  sudo ostrel watch --json | jq 'select(.severity > 2).text'
  ostrel watch --for 60 --simulate fleet.json)";

inline constexpr char JOURNAL_FOOTER[] =
    R"(Prints a line for each entry of the journal that "ostrel serve" keeps in the data
folder (--data DIR, otherwise the system's folder): local time, severity, what
happened, and to which drive. The service need not run, unless this user may not
read that folder: then it is asked. What happened while nobody watched has the
time when it was found, and says since when it may have been so. With --json each line is one JSON object. TIME is a number with s, m,
h, d or w, a date, or a date and a time (2026-01-31T12:00, at the end with Z or
an offset if it is not this machine's time). --follow ends with Ctrl+C or a
termination signal.
The options of "ostrel --help" may be given, too.

Examples:
  ostrel journal --since 7d
  ostrel journal --follow --json | jq 'select(.severity > 2).text')";

inline constexpr char CHECK_FOOTER[] =
    R"(One line as Nagios, Icinga and others expect it: the verdict, what is wrong, and
after "|" the drives' figures with their limits. The health of the drives
decides; of several verdicts CRITICAL counts most, then WARNING, UNKNOWN, OK.
A drive that does not answer is asked once more: WARNING if it answers then,
otherwise CRITICAL.

Exit codes: 0 OK, 1 WARNING, 2 CRITICAL, 3 UNKNOWN. Whatever is no verdict is
UNKNOWN: wrong options, this help, no permission, no drive, a failed request.
The options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel check
  sudo ostrel check S64HNE0R602114
  ostrel check --json --simulate fleet.json)";

inline constexpr char DOCTOR_FOOTER[] =
    R"(Prints a line for each check: OK, NOTE, or PROBLEM with what to do about it. The
exit code is that of the first problem.
The options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel doctor
  ostrel doctor --simulate fleet.json)";

inline constexpr char SERVE_FOOTER[] =
    R"(Watches the drives for as long as it runs, keeps a journal of what changes, and
answers over HTTP: a status page, /metrics and /api/v1. Answers come from memory
and never wait for a drive. A machine without drives is watched, too. Ends with
Ctrl+C or a termination signal. SIGHUP makes it read its settings again.
Journal, database, adapter numbers and settings are in the data folder
(--data DIR, otherwise the system's folder). One process keeps a folder. For a
simulated fleet without --data, that folder is removed at the end.
The options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel serve
  ostrel serve --listen 127.0.0.1:0 --simulate fleet.json)";

/** Further sentences about an option for the manual, one in each line. */
struct OptionDetails
{
    const char* m_Option;
    const char* m_Text;
};

inline constexpr OptionDetails OPTION_DETAILS[] = {
    {"--plugin", "This option may be given several times.\n"
                 "Each plug-in must have a module number of its own.\n"
                 "It is no failure when a plug-in finds no hardware, as long as another one finds some.\n"},
    {"--data", "With this option most commands keep there what they see.\n"
               "The section FILES says more.\n"},
    {"--simulate", "The drives of this machine are not used.\n"},
    {"--reader", "Without this option the program uses the reader at /run/ostrel/reader.sock.\n"
                 "Members of the group \"ostrel\" may use that one.\n"
                 "Where there is none, the program asks the drives itself, which only root may do.\n"},
    {"--trace", "MASK is a decimal number or, after 0x, a hexadecimal one.\n"
                "It is the sum of 2 (entry, exit and results), 4 (topology, property counts, wake reasons), "
                "8 (locks), 16 (progress, scanned values) and 128 (the database).\n"
                "With N, the mask is only for the plug-in with this module number.\n"
                "The installed plug-in has the number 313.\n"
                "This option may be given several times.\n"},
    {"--trace-file", "When the file has grown to 8 MiB, it is renamed to FILE.1, and a new one begins.\n"
                     "Three older files are kept.\n"},
    {"--help", "After a command, this prints the help of that command.\n"},
    {"--since", "Only \"journal\" takes this option.\n"},
    {"--follow", "Only \"journal\" takes this option.\n"},
    {"--for", "Only \"watch\" takes this option.\n"},
    {"--listen", "Only \"serve\" takes this option.\n"
                 "Port 0 lets the system pick one; the first line on standard error names it.\n"},
    {"--settings", "Only \"serve\" takes this option.\n"
                   "The file must exist then.\n"},
};

} // namespace Host::Cli
