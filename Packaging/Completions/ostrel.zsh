#compdef ostrel

_ostrel_commands() {
    local -a commands=(
        'list:one line a drive'
        'topology:every object with its properties'
        'show:the properties of one object'
        'set:give a property another value'
        'watch:each event of the drives as it comes'
        'doctor:what can be seen here, what not, and why'
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
(( ! $words[(I)watch] )) || own=('--for[end after so many seconds]:seconds: ')

_arguments \
    $own \
    '*--plugin[plug-in to load beside the installed one]:plug-in:_files' \
    '--data[folder of database, adapter numbers and settings]:folder:_files -/' \
    '--simulate[show the drives that a fleet file describes]:fleet file:_files -g "*.json"' \
    '*--trace[write trace lines of these levels]:mask: ' \
    '--trace-file[where trace lines go instead of standard error]:file:_files' \
    '--json[print one JSON document]' \
    '--version[print the version and exit]' \
    '(-h --help)'{-h,--help}'[print help and exit]' \
    '1:command:_ostrel_commands' \
    '*:argument:_ostrel_arguments'
