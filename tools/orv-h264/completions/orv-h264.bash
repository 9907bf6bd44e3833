# Completion of orv-h264 for bash. It needs nothing of the package bash-completion.

_orv_h264()
{
    local subcommands="info inspect explain frames report check convert cut avcc help"
    local framings="annexb length1 length2 length3 length4"
    local help="-h --help"
    local many="--files-from -0 --null --jobs"
    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} subcommand=${COMP_WORDS[1]} options

    # --to=length4 stands there as three words.
    if [[ $current == "=" ]]; then
        current=
    elif [[ $before == "=" ]]; then
        before=${COMP_WORDS[COMP_CWORD-2]}
    fi

    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        [[ $current != -* ]] || subcommands="$help -V --version"
        mapfile -t COMPREPLY < <(compgen -W "$subcommands" -- "$current")
        return
    fi
    case $subcommand in
    info) options="$many --format --track --max-unit --json --csv --tsv" ;;
    inspect) options="--format --track --max-unit --nals --limit --only --positions --long-names --json --csv --tsv" ;;
    explain) options="--format --track --max-unit --json --csv --tsv" ;;
    frames) options="$many --format --track --max-unit --fields --split-fields --output-order --limit --json --csv --tsv" ;;
    report) options="--format --track --max-unit -o --output" ;;
    check) options="$many --format --track --max-unit --json --sarif --junit --ignore --only --profile --limit --hrd --rules --explain" ;;
    convert) options="--format --track --max-unit --to --avcc --parameter-sets" ;;
    cut) options="--format --track --max-unit --from --to --key --only --base --layer --view --rate --json" ;;
    avcc) options="--json --csv --tsv" ;;
    help) options="" ;;
    *) return ;;
    esac
    if [[ $subcommand == help && $current != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$subcommands" -- "$current")
        return
    fi
    case $subcommand$before in
    cut--to) return ;;
    esac
    case $before in
    --format | --to)
        [[ " $options " != *" $before "* ]] || mapfile -t COMPREPLY < <(compgen -W "$framings" -- "$current")
        return
        ;;
    --profile)
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -W "disc low-latency streaming" -- "$current"; compgen -f -- "$current")
        return
        ;;
    --explain | --from | --ignore | --jobs | --layer | --limit | --max-unit | --only | --rate | --track | --view) return ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$help $options" -- "$current")
    else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}

complete -F _orv_h264 orv-h264
