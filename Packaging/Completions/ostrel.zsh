#compdef ostrel
# Made from the program's own description.

_ostrel_commands() {
    local -a commands=(
        'list:One line a drive'
        'topology:Every object with its properties'
        'show:The properties of one object'
        'set:Give a property another value'
        'watch:Each event of the drives as it comes'
        'check:A verdict for monitoring systems'
        'doctor:Check what can be seen here, and why not more'
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
(( ! $words[(I)watch] )) || own+=('--for[End after so many seconds]:value: ')

_arguments \
    $own \
    '--version[Print the version and exit]' \
    '(-h --help)'{-h,--help}'[Print this help and exit]' \
    '*--plugin[Plug-in to load beside the installed one]:file:_files' \
    '--data[Folder of database, adapter numbers and settings]:folder:_files -/' \
    '--simulate[Show the drives that a fleet file describes]:file:_files' \
    '*--trace[Write trace lines of these levels (of module N)]:value: ' \
    '--trace-file[Where trace lines go instead of standard error]:file:_files' \
    '--json[Print one JSON document (watch: one object a line)]' \
    '1:command:_ostrel_commands' \
    '*:argument:_ostrel_arguments'
