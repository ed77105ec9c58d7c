# Completion of dpc(1) for bash.
_dpc() {
    local cur prev words cword split command='' word options='--help -h'
    _init_completion -s || return

    for word in "${words[@]:1:cword-1}"; do
        [[ $word == @(check|show|diff|roundtrip) ]] && { command=$word; break; }
    done
    case $prev in
        --format)
            options='text json'
            [[ $command == show ]] && options+=' csv'
            COMPREPLY=($(compgen -W "$options" -- "$cur"))
            return ;;
        --hosts-file) _filedir; return ;;
        --host) _known_hosts_real -- "$cur"; return ;;
        --no-rule)
            options=$(dpc check --list-rules 2>/dev/null | sed -n 's/^\([^ ]\+\) (.*/\1/p')
            COMPREPLY=($(compgen -W "$options" -- "$cur"))
            return ;;
        --hosts | --date | --iteration) return ;;
    esac
    $split && return
    case $command in
        '') COMPREPLY=($(compgen -W "check show diff roundtrip $options --version" -- "$cur"))
            return ;;
        check) options+=' --format --quiet -q --werror --no-rule --hosts --hosts-file --list-rules' ;;
        show) options+=' --format --expand --host --date --iteration' ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    else
        _filedir dpc
    fi
} &&
    complete -F _dpc dpc
