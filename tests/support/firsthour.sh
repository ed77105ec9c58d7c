# Gives the commands of the README's first hour to dpc, on the README's series, and writes what a terminal
# receives. usage, with dpc in PATH, as root: unshare --mount --uts sh firsthour.sh README CHECK RUN
set -eu
readme=$1
exec 3>"$2" 4>"$3"

# The folders that the page speaks of, empty; they are gone with the namespace.
hostname pc07
for folder in /var/tmp /tmp; do
    mount -t tmpfs pictures $folder
done
mkdir -p /var/tmp/test/_wait
sed -n '/^```text$/,/^```$/ { /^```/!p }' "$readme" >/var/tmp/test/_wait/mytest.dpc
# As the editor saves it for a task that came out of the form.
echo 'Stream;NOflush;NOprealloc;  0;    0; -1; 0;1;0;  MEMORY;  [cfgPath]/dummyFile;  ;  ;  true;' \
    >/var/tmp/test/mytest_init.dpc

# The commands of the page that begin with a word, as they stand there.
commands() {
    sed -n "s/^\\\$ \(dpc $1 .*\)/\1/p" "$readme" | while read -r command; do
        echo "\$ $command"
        # Findings end with 1.
        script --quiet --return --command "$command" /dev/null </dev/null || [ $? = 1 ]
    done
}
{
    commands check
    commands init
    commands check
} >&3
commands run >&4
