# Completion of dpc(1) for fish.
set -l commands check show diff roundtrip
set -l none "not __fish_seen_subcommand_from $commands"
set -l check '__fish_seen_subcommand_from check'
set -l show '__fish_seen_subcommand_from show'

complete -c dpc -f
complete -c dpc -s h -l help -d 'Describe what dpc can do'
complete -c dpc -n $none -l version -d 'Print the version'
complete -c dpc -n $none -a check -d 'Report what is wrong'
complete -c dpc -n $none -a show -d 'Print as a table'
complete -c dpc -n $none -a diff -d 'Compare two series'
complete -c dpc -n $none -a roundtrip -d 'Say what load and save would change'

complete -c dpc -n "__fish_seen_subcommand_from $commands" -k -a '(__fish_complete_suffix .dpc)'
complete -c dpc -n $check -l format -x -a 'text json' -d 'How to print'
complete -c dpc -n $check -s q -l quiet -d 'Print nothing'
complete -c dpc -n $check -l list-rules -d 'Print all rules'
complete -c dpc -n $check -l werror -d 'Count warnings as errors'
complete -c dpc -n $check -l no-rule -x -a '(dpc check --list-rules 2>/dev/null | string match -rg "^([^ ]+) \(")' -d 'Leave out findings of a rule'
complete -c dpc -n $check -l hosts -x -d 'Names of the machines, separated by commas'
complete -c dpc -n $check -l hosts-file -r -F -d 'File with names of the machines'
complete -c dpc -n $show -l format -x -a 'text csv json' -d 'How to print'
complete -c dpc -n $show -l expand -d 'Replace variables'
complete -c dpc -n $show -l host -x -a '(__fish_print_hostnames)' -d 'Name of the machine'
complete -c dpc -n $show -l date -x -d 'Date and time'
complete -c dpc -n $show -l iteration -x -d 'Number of the iteration'
