#compdef ostrel
# Made from the program's own description.

_ostrel_commands() {
    local -a commands=(
        'list:Show one line for each drive'
        'topology:Show every object with its properties'
        'show:Show the properties of one object'
        'set:Set a property to another value'
        'watch:Print each event of the drives when it comes'
        'journal:Print what the service has told'
        'check:Print a verdict for monitoring systems'
        'doctor:Check what can be seen here, and say what is wrong'
        'serve:Run the service that watches, tells and answers'
    )
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
(( ! $words[(I)watch] )) || own+=('--for[End after this number of seconds]:value: ')
(( ! $words[(I)journal] )) || own+=('--since[Begin at this time, or this long ago (2h, 7d)]:value: ')
(( ! $words[(I)journal] )) || own+=('--follow[Go on with what the service tells from now on]')
(( ! $words[(I)serve] )) || own+=('--listen[Answer HTTP at this address instead of the one in the settings]:value: ')
(( ! $words[(I)serve] )) || own+=('--settings[Read the settings from this file instead of serve.ini in the data folder]:file:_files')

_arguments \
    $own \
    '--version[Print the version and exit]' \
    '(-h --help)'{-h,--help}'[Print this help and exit]' \
    '*--plugin[Load this plug-in in addition to the installed one]:file:_files' \
    '--data[Folder for database, adapter numbers and settings]:folder:_files -/' \
    '--simulate[Show the drives that a fleet file describes]:file:_files' \
    '--reader[Ask the drives through the reader at this socket]:file:_files' \
    '*--trace[Write trace lines of these levels (of module N)]:value: ' \
    '--trace-file[File for trace lines instead of standard error]:file:_files' \
    '--json[Print JSON (watch, journal: one object per line)]' \
    '1:command:_ostrel_commands' \
    '*:argument:_ostrel_arguments'
