# bash completion for ostrel; made from the program's own description

_ostrel() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} word command=
    local commands="list topology show set watch journal check doctor serve"
    local options="--version -h --help --plugin --data --simulate --reader --trace --trace-file --json"

    case $previous in
        --plugin | --simulate | --reader | --trace-file | --settings)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --data)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return
            ;;
        --trace | --for | --since | --listen) return ;;
    esac

    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ " $commands " != *" $word "* ]] || command=$word
    done
    [[ $command != watch ]] || options+=" --for"
    [[ $command != journal ]] || options+=" --since --follow"
    [[ $command != serve ]] || options+=" --listen --settings"
    if [[ $current == -* ]]; then
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
