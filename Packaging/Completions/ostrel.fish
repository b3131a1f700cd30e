# fish completion for ostrel; made from the program's own description

set -l commands list topology show set watch journal check doctor serve

complete -c ostrel -f
complete -c ostrel -l version -d 'Print the version and exit'
complete -c ostrel -s h -l help -d 'Print this help and exit'
complete -c ostrel -l plugin -r -F -d 'Load this plug-in in addition to the installed one'
complete -c ostrel -l data -x -a '(__fish_complete_directories)' -d 'Folder for database, adapter numbers and settings'
complete -c ostrel -l simulate -r -F -d 'Show the drives that a fleet file describes'
complete -c ostrel -l reader -r -F -d 'Ask the drives through the reader at this socket'
complete -c ostrel -l trace -x -d 'Write trace lines of these levels (of module N)'
complete -c ostrel -l trace-file -r -F -d 'File for trace lines instead of standard error'
complete -c ostrel -l json -d 'Print JSON (watch, journal: one object per line)'

complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a list -d 'Show one line for each drive'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a topology -d 'Show every object with its properties'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a show -d 'Show the properties of one object'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a set -d 'Set a property to another value'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a watch -d 'Print each event of the drives when it comes'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a journal -d 'Print what the service has told'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a check -d 'Print a verdict for monitoring systems'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a doctor -d 'Check what can be seen here, and say what is wrong'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a serve -d 'Run the service that watches, tells and answers'
complete -c ostrel -n '__fish_seen_subcommand_from show' -a 'plugin (for disk in /dev/nvme*n*; echo $disk; end)'
complete -c ostrel -n '__fish_seen_subcommand_from set; and not __fish_seen_subcommand_from plugin' -a plugin
complete -c ostrel -n '__fish_seen_subcommand_from set; and __fish_seen_subcommand_from plugin' -a pollinterval
complete -c ostrel -n '__fish_seen_subcommand_from watch' -l for -x -d 'End after this number of seconds'
complete -c ostrel -n '__fish_seen_subcommand_from journal' -l since -x -d 'Begin at this time, or this long ago (2h, 7d)'
complete -c ostrel -n '__fish_seen_subcommand_from journal' -l follow -d 'Go on with what the service tells from now on'
complete -c ostrel -n '__fish_seen_subcommand_from serve' -l listen -x -d 'Answer HTTP at this address instead of the one in the settings'
complete -c ostrel -n '__fish_seen_subcommand_from serve' -l settings -r -F -d 'Read the settings from this file instead of serve.ini in the data folder'
