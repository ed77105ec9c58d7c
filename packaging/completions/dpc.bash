# Completion of dpc(1) for bash.
# Made from the options of the program, see CONTRIBUTING.md; not to be edited.
_dpc_rules() {
    local prefix=
    [[ $cur == *,* ]] && prefix=${cur%,*},
    COMPREPLY=($(compgen -P "$prefix" -W "$(dpc check --list-rules 2>/dev/null |
        sed -n 's/^\([^ ]\+\) (.*/\1/p')" -- "${cur##*,}"))
}

_dpc() {
    local cur prev words cword split command='' word options='--help -h' operand=:
    _init_completion -s || return

    for word in "${words[@]:1:cword-1}"; do
        [[ $word == @(check|explain|show|diff|roundtrip|init|export|run|report) ]] && { command=$word; break; }
    done
    case $command:$prev in
        check:--format) COMPREPLY=($(compgen -W 'text json github' -- "$cur")); return ;;
        check:--no-rule) _dpc_rules; return ;;
        check:--hosts) _known_hosts_real -- "$cur"; return ;;
        check:--machines) :; return ;;
        check:--hosts-file) _filedir; return ;;
        check:--color) COMPREPLY=($(compgen -W 'auto always never' -- "$cur")); return ;;
        show:--format) COMPREPLY=($(compgen -W 'text csv json' -- "$cur")); return ;;
        show:--host) _known_hosts_real -- "$cur"; return ;;
        show:--date) :; return ;;
        show:--iteration) :; return ;;
        diff:--format) COMPREPLY=($(compgen -W 'text json' -- "$cur")); return ;;
        roundtrip:--format) COMPREPLY=($(compgen -W 'text json' -- "$cur")); return ;;
        export:--format) COMPREPLY=($(compgen -W 'text json' -- "$cur")); return ;;
        export:--hosts) _known_hosts_real -- "$cur"; return ;;
        export:--hosts-file) _filedir; return ;;
        export:--temp) _filedir -d; return ;;
        export:--date) :; return ;;
        export:--allow-loss) COMPREPLY=($(compgen -W 'fio-not-run fio-buffer-sizes fio-preallocate fio-flush fio-cache-mode' -- "$cur")); return ;;
        run:--to) _filedir -d; return ;;
        run:--hosts) _known_hosts_real -- "$cur"; return ;;
        run:--hosts-file) _filedir; return ;;
        run:--temp) _filedir -d; return ;;
        run:--date) :; return ;;
        run:--allow-loss) COMPREPLY=($(compgen -W 'fio-not-run fio-buffer-sizes fio-preallocate fio-flush fio-cache-mode' -- "$cur")); return ;;
        run:--stage) :; return ;;
        run:--overwrite) _filedir -d; return ;;
        run:--timeout) :; return ;;
        report:--format) COMPREPLY=($(compgen -W 'text csv json html markdown' -- "$cur")); return ;;
        report:--output) _filedir; return ;;
        report:--fail-if-slower) :; return ;;
    esac
    $split && return
    case $command in
        '') COMPREPLY=($(compgen -W "check explain show diff roundtrip init export run report $options --version" -- "$cur"))
            return ;;
        check) options+=' --format -q --quiet --no-rule --werror --hosts --machines --hosts-file --summary --color --list-rules' operand='_filedir dpc' ;;
        explain) options+='' operand='_dpc_rules' ;;
        show) options+=' --format --expand --host --date --iteration' operand='_filedir dpc' ;;
        diff) options+=' --format' operand='_filedir dpc' ;;
        roundtrip) options+=' --format' operand='_filedir dpc' ;;
        init) options+=' --write' operand='_filedir dpc' ;;
        export) options+=' --format --hosts --hosts-file --temp --date --allow-loss' operand='_filedir dpc' ;;
        run) options+=' --to --hosts --hosts-file --temp --date --allow-loss --dry-run --stage --overwrite --keep-going --timeout --start-at-minute --trust-network' operand='_filedir dpc' ;;
        report) options+=' --format -o --output --fail-if-slower' operand='_filedir -d' ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    else
        $operand
    fi
} &&
    complete -F _dpc dpc
