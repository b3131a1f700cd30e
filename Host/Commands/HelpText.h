#pragma once

/** The help texts of the program and of each command, besides the list of options. */
namespace Host::Cli {

inline constexpr char PROGRAM_HELP[] =
    "Shows NVMe drives, how healthy they are, and what is wrong with them.";

inline constexpr char PROGRAM_FOOTER[] =
    R"(These options may come before or after the command. The options of a single
command must come after it. "ostrel COMMAND --help" tells more about a command.

Exit codes: 0 done, 1 a request failed, 2 wrong usage, 3 no supported hardware,
4 no permission, 5 no such object. Those of "check" are 0 OK, 1 WARNING,
2 CRITICAL, 3 UNKNOWN.

Examples:
  sudo ostrel list
  sudo ostrel show nvme0n1
  ostrel list --json --simulate fleet.json)";

inline constexpr char LIST_FOOTER[] =
    R"(On a terminal long texts are shortened, and the reasons of a bad health are
below the table. Elsewhere, and with --json, every text is whole.
All options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel list
  sudo ostrel list --json | jq '.drives[] | select(.healthCode != 40024).serial')";

inline constexpr char TOPOLOGY_FOOTER[] =
    R"(All options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel topology
  sudo ostrel topology --json | jq '.objects[].id')";

inline constexpr char SHOW_FOOTER[] =
    R"(A serial number, a device (nvme0n1), its controller (nvme0) or a PCI address
(0000:01:00.0, 01:00.0) names an adapter and its drive. An identifier or a
location names one object, "plugin" the plug-in itself. With PROPERTY just its
value is printed.
All options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel show plugin
  sudo ostrel show nvme0n1
  sudo ostrel show /dev/nvme0n1 temperature
  sudo ostrel show "PCI:Bus=1&Device=0&Function=0" 30017 --json)";

inline constexpr char SET_FOOTER[] =
    R"(PROPERTY is a number or caption; case and blanks do not matter. A value beyond
the property's limits is taken to the next limit. Today there is one property
that can be set, the plug-in's poll interval (2 to 255 seconds), which is kept
in "Ostrel.ini" in the data folder (--data DIR, otherwise the system's folder).
A "watch" that is running does not notice it; it counts from its next start.
All options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel set plugin pollinterval 60
  sudo ostrel --data /srv/ostrel set plugin 30005 10)";

inline constexpr char WATCH_FOOTER[] =
    R"(First a line for each thing that the drives suffer from already, then one for
each change: local time, severity, what happened, and to which drive. Nothing
is told twice. With --json each line is one JSON object. Ends with Ctrl+C or a
termination signal, or after the SECONDS. Database, adapter numbers and
"Ostrel.ini" are in the data folder (--data DIR, otherwise the system's folder,
but for a simulated fleet, of which nothing is kept unless --data is given).
"Ostrel.ini" is read at the start: "set", or anybody else who changes it
meanwhile, is not noticed before the next one.
All options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel watch
  sudo ostrel watch --json | jq 'select(.severity > 2).text'
  ostrel watch --for 60 --simulate fleet.json)";

inline constexpr char CHECK_FOOTER[] =
    R"(One line as Nagios, Icinga and others expect it: the verdict, what is wrong, and
after "|" the drives' figures with their limits. The health of the drives
decides; of several verdicts CRITICAL counts most, then WARNING, UNKNOWN, OK.

Exit codes: 0 OK, 1 WARNING, 2 CRITICAL, 3 UNKNOWN. Whatever is no verdict is
UNKNOWN: wrong options, this help, no permission, no drive, a failed request.
All options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel check
  sudo ostrel check S64HNE0R602114
  ostrel check --json --simulate fleet.json)";

inline constexpr char DOCTOR_FOOTER[] =
    R"(A line for each thing that was looked at: OK, NOTE, or PROBLEM with what to do
about it. The exit code is that of the first problem.
All options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel doctor
  ostrel doctor --simulate fleet.json)";

/** Further sentences about an option for the manual, one in each line. */
struct OptionDetails
{
    const char* m_Option;
    const char* m_Text;
};

inline constexpr OptionDetails OPTION_DETAILS[] = {
    {"--plugin", "This option may be given several times.\n"
                 "Each plug-in must have a module number of its own.\n"
                 "A plug-in that finds no hardware is no failure as long as another one finds some.\n"},
    {"--data", "Most commands then keep what they see there, too.\n"
               "The section FILES says more.\n"},
    {"--simulate", "The drives of this machine are left alone.\n"},
    {"--trace", "MASK is a decimal number or, after 0x, a hexadecimal one.\n"
                "It is the sum of 2 (entry, exit and results), 4 (topology, property counts, wake reasons), "
                "8 (locks), 16 (progress, scanned values) and 128 (the database).\n"
                "With N, it holds for the plug-in with this module number alone.\n"
                "The installed plug-in has the number 313.\n"
                "This option may be given several times.\n"},
    {"--trace-file", "A file that has grown to 8 MiB is renamed to FILE.1, and a new one is begun.\n"
                     "Three such files are kept.\n"},
    {"--help", "After a command, print the help of that command.\n"},
    {"--for", "Only \"watch\" takes this option.\n"},
};

} // namespace Host::Cli
