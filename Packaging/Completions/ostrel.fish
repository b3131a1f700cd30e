# fish completion for ostrel

set -l commands list topology show set watch doctor

complete -c ostrel -f
complete -c ostrel -l plugin -r -F -d 'Plug-in to load beside the installed one'
complete -c ostrel -l data -x -a '(__fish_complete_directories)' -d 'Folder of database, adapter numbers and settings'
complete -c ostrel -l simulate -r -F -d 'Show the drives that a fleet file describes'
complete -c ostrel -l trace -x -d 'Write trace lines of these levels'
complete -c ostrel -l trace-file -r -F -d 'Where trace lines go instead of standard error'
complete -c ostrel -l json -d 'Print one JSON document'
complete -c ostrel -l version -d 'Print the version and exit'
complete -c ostrel -s h -l help -d 'Print help and exit'

complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a list -d 'One line a drive'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a topology -d 'Every object with its properties'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a show -d 'The properties of one object'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a set -d 'Give a property another value'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a watch -d 'Each event of the drives as it comes'
complete -c ostrel -n "not __fish_seen_subcommand_from $commands" -a doctor -d 'What can be seen here, what not, and why'
complete -c ostrel -n '__fish_seen_subcommand_from show' -a 'plugin (for disk in /dev/nvme*n*; echo $disk; end)'
complete -c ostrel -n '__fish_seen_subcommand_from set; and not __fish_seen_subcommand_from plugin' -a plugin
complete -c ostrel -n '__fish_seen_subcommand_from set; and __fish_seen_subcommand_from plugin' -a pollinterval
complete -c ostrel -n '__fish_seen_subcommand_from watch' -l for -x -d 'End after so many seconds'
