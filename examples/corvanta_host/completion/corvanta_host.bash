# bash completion of corvanta_host, which itself knows what can come next.
_corvanta_host() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev cword=$COMP_CWORD words=("${COMP_WORDS[@]}") line extensions
    # Tracks have colons in their names.
    ! declare -F _get_comp_words_by_ref >/dev/null || _get_comp_words_by_ref -n : cur prev words cword
    COMPREPLY=()
    while IFS= read -r line; do
        case $line in
            :files*)
                compopt -o filenames 2>/dev/null
                extensions=${line#:files}
                extensions=${extensions# }
                if declare -F _filedir >/dev/null; then
                    _filedir ${extensions:+"@(${extensions// /|})"}
                else
                    local IFS=$'\n'
                    COMPREPLY+=($(compgen -f -- "$cur"))
                fi
                ;;
            *) COMPREPLY+=("${line%%$'\t'*}") ;;
        esac
    done < <("${words[0]}" __complete "${words[@]:1:cword}" 2>/dev/null)
    ! declare -F __ltrim_colon_completions >/dev/null || __ltrim_colon_completions "$cur"
}
complete -F _corvanta_host corvanta_host
