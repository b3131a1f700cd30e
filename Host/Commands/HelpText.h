#pragma once

/** What the help tells beside the list of options: of the program, and below those of each command. */
namespace Host::Cli {

inline constexpr char PROGRAM_HELP[] =
    "Shows NVMe drives: what they are, how they fare, what is wrong with them.";

inline constexpr char PROGRAM_FOOTER[] =
    R"(These options may stand before or after the command, a command's own options
only after it. "ostrel COMMAND --help" tells more about a command.

Exit codes: 0 done, 1 a request failed, 2 wrong usage, 3 no supported hardware,
4 no permission, 5 no such object.

Examples:
  sudo ostrel list
  sudo ostrel show nvme0n1
  ostrel list --json --simulate fleet.json)";

inline constexpr char LIST_FOOTER[] =
    R"(On a terminal long texts are shortened and the reasons of a bad health stand
below the table; elsewhere, and with --json, every text is whole.
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
(0000:01:00.0, 01:00.0) stands for the adapter and its drive, an identifier or a
location for one object, "plugin" for the plug-in's own. With PROPERTY just its
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

inline constexpr char DOCTOR_FOOTER[] =
    R"(A line for each thing that was looked at: OK, NOTE, or PROBLEM with what to do
about it. The exit code is that of the first problem.
All options of "ostrel --help" may be given, too.

Examples:
  sudo ostrel doctor
  ostrel doctor --simulate fleet.json)";

} // namespace Host::Cli
