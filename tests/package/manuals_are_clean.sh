# The manual pages have no fault that mandoc knows of, refer to pages and documents that exist, and are
# found. Links between documents lead to installed files.
. "$(dirname "$0")/common.sh"

install_to "$scratch/usr"
export MANPATH="$scratch/usr/share/man"
# mandoc looks for pages that are referred to in the system's folders only.
faults=$(mandoc -T lint "$source"/packaging/man/* | sed '/referenced manual not found/d')
[ -z "$faults" ] || fail "$faults"
sed -n 's/^\.Xr \([^ ]*\) \([0-9]\).*/\2 \1/p' "$source"/packaging/man/* | sort -u >"$scratch/references"
while read -r section name; do
    man --where "$section" "$name" >"$scratch/page" || fail "missing page $name($section)"
done <"$scratch/references"
for program in "$scratch/usr/bin"/*; do
    man --where 1 "${program##*/}" >"$scratch/page" || fail "$program has no manual page"
done
MANWIDTH=80 man 5 dpc 2>"$scratch/faults" | grep -q 'fourteen fields' || fail "dpc(5) can't be read"
[ ! -s "$scratch/faults" ] || fail "dpc(5) does not fit into 80 columns: $(cat "$scratch/faults")"
sed -n 's|^\.Pa /usr/\(share/doc/[^ ]*\).*|\1|p' "$source"/packaging/man/* >"$scratch/documents"
[ -s "$scratch/documents" ] || fail "the manual pages name no documents"
while read -r document; do
    [ -f "$scratch/usr/$document" ] || fail "$document is named, but not installed"
done <"$scratch/documents"
for document in "$scratch"/usr/share/doc/*/docs/*.md; do
    grep -o '](\w[^):#]*[)#]' "$document" | tr -d '](#)' | sort -u >"$scratch/links"
    while read -r link; do
        [ -e "${document%/*}/$link" ] || fail "$document has a link to $link"
    done <"$scratch/links"
done
