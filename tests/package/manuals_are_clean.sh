# The manual pages have no fault that mandoc knows of, refer to pages that exist, and are found.
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
man 5 dpc | grep -q 'fourteen fields' || fail "dpc(5) can't be read"
