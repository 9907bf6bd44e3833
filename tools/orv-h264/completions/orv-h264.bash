# Completion of orv-h264 for bash. It needs nothing of the package bash-completion.

_orv_h264()
{
    local subcommands="info inspect explain frames report check convert cut edit diff avcc help"
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
    edit)
        options="--format --track --max-unit --set --delete --insert --remove-sei --insert-sei --sei-at --add-aud"
        options+=" --remove-aud --remove-filler --repeat-headers --sar --rate --level --colour --crop --full-range"
        options+=" --force --dry-run --json"
        ;;
    diff) options="--format --track --max-unit --ignore --all --json" ;;
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
    --sei-at | --level | --full-range)
        local values="first idr picture"
        [[ $before != --level ]] || values="auto 1 1b 1.1 1.2 1.3 2 2.1 2.2 3 3.1 3.2 4 4.1 4.2 5 5.1 5.2 6 6.1 6.2"
        [[ $before != --full-range ]] || values="on off"
        [[ " $options " != *" $before "* ]] || mapfile -t COMPREPLY < <(compgen -W "$values" -- "$current")
        return
        ;;
    --set | --delete | --insert | --remove-sei | --insert-sei | --sar | --rate | --colour | --crop) return ;;
    --explain | --from | --ignore | --jobs | --layer | --limit | --max-unit | --only | --track | --view) return ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$help $options" -- "$current")
    else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}

complete -F _orv_h264 orv-h264
