# fish completion for brimwatchctl
complete -c brimwatchctl -f
complete -c brimwatchctl -n __fish_use_subcommand -a status -d 'Print what is left'
complete -c brimwatchctl -n __fish_use_subcommand -a refresh -d 'Ask for the quota anew'
complete -c brimwatchctl -n __fish_use_subcommand -a toggle -d 'Open the popover, or close it'
complete -c brimwatchctl -n __fish_use_subcommand -a settings -d 'Open the popover with the settings'
complete -c brimwatchctl -n __fish_use_subcommand -a diagnostics -d 'Print a report for support'
complete -c brimwatchctl -n __fish_use_subcommand -l version -d 'Print the version'
complete -c brimwatchctl -n __fish_use_subcommand -l help -s h -d 'Print the help'
complete -c brimwatchctl -n '__fish_seen_subcommand_from status' -l format -x -a 'text json waybar i3blocks template' -d 'The form of the output'
complete -c brimwatchctl -n '__fish_seen_subcommand_from status' -l template -x -d 'Text with fields to fill in'
complete -c brimwatchctl -n '__fish_seen_subcommand_from status' -l watch -d 'Print a line at each change'
