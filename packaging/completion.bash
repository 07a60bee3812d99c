# Completion of auto-node for bash. What there is to complete it asks the program itself, so that it never differs.

_auto_node() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
        -o | --output | --store | --accept | --into | --text | --map | --sounds | --plan | --against)
            compopt -o filenames
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return
            ;;
    esac
    local command=()
    ((COMP_CWORD == 1)) || command=("${COMP_WORDS[1]}")
    local words
    words=$("${COMP_WORDS[0]}" "${command[@]}" --help 2>/dev/null | awk '
        /^[A-Z][a-z]*:/ { part = $1 }
        part == "Options:" && /^  -/ { split($1, names, ","); for (i in names) print names[i] }
        part == "Subcommands:" && /^  [a-z]/ { print $1 }')
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    # Files of commands that take them as arguments.
    if [[ ${#COMPREPLY[@]} -eq 0 && ${command[0]-} =~ ^(import|export|expect|merge|apply|report)$ ]]; then
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -F _auto_node auto-node
