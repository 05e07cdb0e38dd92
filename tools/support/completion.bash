# Completion of the programs' subcommands and options in bash: what their own --help tells.
_vorda() {
    local word=${COMP_WORDS[COMP_CWORD]} help words=("${COMP_WORDS[0]}")
    # The subcommand is the first word that is no option.
    [[ ${COMP_CWORD} -gt 1 && ${COMP_WORDS[1]} != -* ]] && words+=("${COMP_WORDS[1]}")
    help=$("${words[@]}" --help 2>/dev/null) || help=$("${words[0]}" --help 2>/dev/null)
    local options commands
    options=$(grep -oE '^ +(-[a-zA-Z],)?--[a-z0-9-]+' <<<"$help" | grep -oE -- '--[a-z0-9-]+')
    commands=$(sed -n '/^Subcommands:/,$s/^  \([a-z0-9-]\+\) .*/\1/p' <<<"$help")
    if [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$word"))
    elif [[ ${#words[@]} -eq 1 && -n $commands ]]; then
        COMPREPLY=($(compgen -W "$commands" -- "$word"))
    else
        COMPREPLY=($(compgen -f -- "$word"))
    fi
}
complete -o filenames -F _vorda vorda vorda-run vorda-mesh vorda-p2f vorda-modes vorda-mpi vorda-study
