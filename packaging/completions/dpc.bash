# Completion of dpc(1) for bash.
_dpc() {
    local cur prev words cword command='' word
    _init_completion -s || return

    case $prev in
        --format) COMPREPLY=($(compgen -W 'text csv json' -- "$cur")); return ;;
        --hosts-file) _filedir; return ;;
        --host) _known_hosts_real -- "$cur"; return ;;
        --hosts | --no-rule | --date | --iteration) return ;;
    esac
    for word in "${words[@]:1:cword-1}"; do
        [[ $word == @(check|show|diff|roundtrip) ]] && { command=$word; break; }
    done
    if [[ -z $command ]]; then
        COMPREPLY=($(compgen -W 'check show diff roundtrip --help' -- "$cur"))
    elif [[ $cur == -* ]]; then
        local options=--help
        case $command in
            check) options+=' --format --quiet --werror --no-rule --hosts --hosts-file' ;;
            show) options+=' --format --expand --host --date --iteration' ;;
        esac
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
    else
        _filedir dpc
    fi
} &&
    complete -F _dpc dpc
