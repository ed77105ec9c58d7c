# The shells load the completions without complaint, and offer what fits.
. "$(dirname "$0")/common.sh"

cd "$scratch"
mkdir folder
touch a.dpc b.txt
completions=$source/packaging/completions

# The words that bash offers for a command line, as its completion asks for them.
in_bash() {
    bash --norc -c '
        set -e
        . /usr/share/bash-completion/bash_completion
        . "$1"
        complete -p dpc >/dev/null
        COMP_LINE=$2
        read -ra COMP_WORDS <<<"$COMP_LINE"
        [[ $COMP_LINE == *" " ]] && COMP_WORDS+=("")
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMP_POINT=${#COMP_LINE}
        COMP_TYPE=9 COMP_KEY=9
        set +e
        _dpc dpc "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD-1]}"
        printf "%s\n" "${COMPREPLY[@]}"' bash "$completions/dpc.bash" "$1" 2>&1
}

# The words that zsh types and lists when Tab is pressed: its completion runs in a terminal only. Keys go to
# its line editor once that has begun, because before that the terminal itself takes them. The line is
# cleared after that, and a command says that all was typed.
in_zsh() {
    zsh --no-rcs -c '
        zmodload zsh/zpty
        zpty shell zsh --no-rcs -i
        zpty -w shell "PS1=; fpath=($1 \$fpath); autoload -Uz compinit; compinit -u -d $2/dump"
        zpty -w shell "zstyle \":completion:*\" list-prompt \"\"; zstyle \":completion:*\" verbose no"
        zpty -w shell "LISTMAX=1000; setopt no_always_last_prompt; unset zle_bracketed_paste"
        zpty -w shell "zle-line-init() { print -n BEGI\"\"N }; zle -N zle-line-init"
        zpty -r shell output "*BEGIN*"
        zpty -w -n shell "$3"$'"'\\t\\t\\x15print DO\"\"NE\\n'"'
        zpty -r shell output "*DONE*"
        print -r -- $output
        zpty -d shell' zsh "$completions" "$scratch" "$1" 2>&1
}

in_fish() {
    HOME=$scratch fish --no-config -c 'source $argv[1]; complete -C $argv[2]' \
        "$completions/dpc.fish" "$1" 2>&1
}

# offers SHELL LINE WORD...: each of the words is offered, and nothing complains.
offers() {
    shell=$1 line=$2
    shift 2
    offered=$("in_$shell" "$line")
    for word in "$@"; do
        printf '%s\n' "$offered" | grep -qF -e "$word" ||
            fail "$shell does not offer $word for '$line' but: $offered"
    done
    case $offered in
        *rror:* | *'not found'*) fail "$shell, for '$line': $offered" ;;
    esac
}

commands=$("$build/bin/dpc" --help | sed -n '/^COMMANDS/,/^$/s/^ \+\([a-z]\+\) .*/\1/p')
[ -n "$commands" ] || fail "dpc --help names no commands"
for shell in bash zsh fish; do
    # shellcheck disable=SC2086 # a word each
    offers $shell 'dpc ' $commands
    offers $shell 'dpc show --format ' text csv json
    offers $shell 'dpc diff ' a.dpc folder
done
# fish lists other files as well, behind these.
for shell in bash zsh; do
    ! in_$shell 'dpc diff ' | grep -q b.txt || fail "$shell offers files of other types"
done

# They know every option of the program.
for command in $commands; do
    options=$("$build/bin/dpc" $command --help | sed -n '/^OPTIONS/,/^[A-Z]* [A-Z]*$/p' |
        grep -o -e ' --[a-z-]*') || fail "dpc $command --help names no options"
    for shell in bash zsh fish; do
        # The only option is typed at once by zsh, and not listed.
        [ $shell = zsh ] && [ "$(echo "$options" | wc -l)" = 1 ] && continue
        # shellcheck disable=SC2086 # a word each
        offers $shell "dpc $command --" $options
    done
done
