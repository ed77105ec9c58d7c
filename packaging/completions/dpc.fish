# Completion of dpc(1) for fish.
# Made from the options of the program, see CONTRIBUTING.md; not to be edited.
set -l commands check explain show diff roundtrip init export run report
set -l none "not __fish_seen_subcommand_from $commands"

complete -c dpc -f
complete -c dpc -s h -l help -d 'print this page, and end'
complete -c dpc -n $none -l version -d 'print the version, and end'
complete -c dpc -n $none -a check -d 'report every mistake in a series, before machines run it'
complete -c dpc -n $none -a explain -d 'explain a rule of dpc check by examples'
complete -c dpc -n $none -a show -d 'show a series as the editor\'s table shows it'
complete -c dpc -n $none -a diff -d 'compare two series by task and field'
complete -c dpc -n $none -a roundtrip -d 'tell what a load and a save in the editor would change'
complete -c dpc -n $none -a init -d 'print or write the _init file of a series'
complete -c dpc -n $none -a export -d 'write the jobs of fio that a series stands for'
complete -c dpc -n $none -a run -d 'run a series on fio, and account for every job'
complete -c dpc -n $none -a report -d 'show the results of runs'

complete -c dpc -n '__fish_seen_subcommand_from check' -x -k -a '(__fish_complete_suffix .dpc)'
complete -c dpc -n '__fish_seen_subcommand_from check' -l format -x -a 'text json github' -d 'how to print the findings'
complete -c dpc -n '__fish_seen_subcommand_from check' -s q -l quiet -d 'print nothing'
complete -c dpc -n '__fish_seen_subcommand_from check' -l no-rule -x -a '(dpc check --list-rules 2>/dev/null | string match -rg "^([^ ]+) \(")' -d 'leave out the findings of these rules, with commas between'
complete -c dpc -n '__fish_seen_subcommand_from check' -l werror -d 'count warnings as errors for the exit status'
complete -c dpc -n '__fish_seen_subcommand_from check' -l hosts -x -a '(__fish_print_hostnames)' -d 'the machines that run the series, with commas between'
complete -c dpc -n '__fish_seen_subcommand_from check' -l machines -x -d 'so many machines, with the names machine01 and so on'
complete -c dpc -n '__fish_seen_subcommand_from check' -l hosts-file -r -F -d 'the same from a file, one name or range per line'
complete -c dpc -n '__fish_seen_subcommand_from check' -l summary -d 'tell at the end, on the error stream, how much was checked and what was not'
complete -c dpc -n '__fish_seen_subcommand_from check' -l color -x -a 'auto always never' -d 'when to print in color'
complete -c dpc -n '__fish_seen_subcommand_from check' -l list-rules -d 'print all rules, and end'

complete -c dpc -n '__fish_seen_subcommand_from explain' -x -a '(dpc check --list-rules 2>/dev/null | string match -rg "^([^ ]+) \(")'

complete -c dpc -n '__fish_seen_subcommand_from show' -x -k -a '(__fish_complete_suffix .dpc)'
complete -c dpc -n '__fish_seen_subcommand_from show' -l format -x -a 'text csv json' -d 'how to print the tasks'
complete -c dpc -n '__fish_seen_subcommand_from show' -l expand -d 'resolve every path as one machine does'
complete -c dpc -n '__fish_seen_subcommand_from show' -l host -x -a '(__fish_print_hostnames)' -d 'the machine'
complete -c dpc -n '__fish_seen_subcommand_from show' -l date -x -d 'the text that [date] stands for'
complete -c dpc -n '__fish_seen_subcommand_from show' -l iteration -x -d 'the number that [iter] stands for'

complete -c dpc -n '__fish_seen_subcommand_from diff' -x -k -a '(__fish_complete_suffix .dpc)'
complete -c dpc -n '__fish_seen_subcommand_from diff' -l format -x -a 'text json' -d 'how to print the differences'

complete -c dpc -n '__fish_seen_subcommand_from roundtrip' -x -k -a '(__fish_complete_suffix .dpc)'
complete -c dpc -n '__fish_seen_subcommand_from roundtrip' -l format -x -a 'text json' -d 'how to print the changes'

complete -c dpc -n '__fish_seen_subcommand_from init' -x -k -a '(__fish_complete_suffix .dpc)'
complete -c dpc -n '__fish_seen_subcommand_from init' -l write -d 'put the file in place, whole or not at all, in place of printing it'

complete -c dpc -n '__fish_seen_subcommand_from export' -x -k -a '(__fish_complete_suffix .dpc)'
complete -c dpc -n '__fish_seen_subcommand_from export' -l format -x -a 'text json' -d 'how to print what is lost'
complete -c dpc -n '__fish_seen_subcommand_from export' -l hosts -x -a '(__fish_print_hostnames)' -d 'the machines that run the series, with commas between'
complete -c dpc -n '__fish_seen_subcommand_from export' -l hosts-file -r -F -d 'the same from a file, one name or range per line'
complete -c dpc -n '__fish_seen_subcommand_from export' -l temp -x -a '(__fish_complete_directories)' -d 'the folder that [temp] stands for on machines whose line of the hosts file has none'
complete -c dpc -n '__fish_seen_subcommand_from export' -l date -x -d 'the text that [date] stands for'
complete -c dpc -n '__fish_seen_subcommand_from export' -l allow-loss -x -a 'fio-not-run fio-buffer-sizes fio-preallocate fio-flush fio-cache-mode' -d 'go on although fio can\'t do what these rules name, with commas between'

complete -c dpc -n '__fish_seen_subcommand_from run' -x -k -a '(__fish_complete_suffix .dpc)'
complete -c dpc -n '__fish_seen_subcommand_from run' -l to -x -a '(__fish_complete_directories)' -d 'the folder that the run makes for its results'
complete -c dpc -n '__fish_seen_subcommand_from run' -l hosts -x -a '(__fish_print_hostnames)' -d 'the machines that run the series, with commas between'
complete -c dpc -n '__fish_seen_subcommand_from run' -l hosts-file -r -F -d 'the same from a file, one name or range per line'
complete -c dpc -n '__fish_seen_subcommand_from run' -l temp -x -a '(__fish_complete_directories)' -d 'the folder that [temp] stands for on machines whose line of the hosts file has none'
complete -c dpc -n '__fish_seen_subcommand_from run' -l date -x -d 'the text that [date] stands for'
complete -c dpc -n '__fish_seen_subcommand_from run' -l allow-loss -x -a 'fio-not-run fio-buffer-sizes fio-preallocate fio-flush fio-cache-mode' -d 'go on although fio can\'t do what these rules name, with commas between'
complete -c dpc -n '__fish_seen_subcommand_from run' -l dry-run -d 'check the series and ask the machines, and run nothing'
complete -c dpc -n '__fish_seen_subcommand_from run' -l stage -x -d 'run only this stage of the plan'
complete -c dpc -n '__fish_seen_subcommand_from run' -l overwrite -x -a '(__fish_complete_directories)' -d 'write again what this earlier run of the series has made'
complete -c dpc -n '__fish_seen_subcommand_from run' -l keep-going -d 'go on with the next stage after one that failed'
complete -c dpc -n '__fish_seen_subcommand_from run' -l timeout -x -d 'stop a stage that takes longer'
complete -c dpc -n '__fish_seen_subcommand_from run' -l start-at-minute -d 'all machines begin each stage at the next minute of their clocks'
complete -c dpc -n '__fish_seen_subcommand_from run' -l trust-network -d 'use servers of fio that can be reached from outside, although they obey everybody'

complete -c dpc -n '__fish_seen_subcommand_from report' -x -a '(__fish_complete_directories)'
complete -c dpc -n '__fish_seen_subcommand_from report' -l format -x -a 'text csv json html markdown' -d 'how to show the runs'
complete -c dpc -n '__fish_seen_subcommand_from report' -s o -l output -r -F -d 'write the report into a file, replacing it as a whole'
complete -c dpc -n '__fish_seen_subcommand_from report' -l fail-if-slower -x -d 'end with status 1 if a task of a later run is slower than in the first by more than that, and by more than the spread of the iterations'
