# Completion of fish for the program tovik: verbs, their options.
complete -c tovik -n __fish_use_subcommand -a "solve convert display check verify params help"
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l params
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l set
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l time-limit
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l ticks
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l threads
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l gap
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l seed
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l method
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l relax
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l lenient
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l quiet
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l verbose
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l print
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l basis
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l start
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l solution
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l write-basis
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l write-model
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l log
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l json
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l statistics
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l exit-zero
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l version
complete -c tovik -n "not __fish_seen_subcommand_from convert display check verify params help" -l help
complete -c tovik -n "__fish_seen_subcommand_from convert" -l lenient
complete -c tovik -n "__fish_seen_subcommand_from convert" -l params
complete -c tovik -n "__fish_seen_subcommand_from convert" -l set
complete -c tovik -n "__fish_seen_subcommand_from convert" -l help
complete -c tovik -n "__fish_seen_subcommand_from display" -l params
complete -c tovik -n "__fish_seen_subcommand_from display" -l set
complete -c tovik -n "__fish_seen_subcommand_from display" -l help
complete -c tovik -n "__fish_seen_subcommand_from check" -l most
complete -c tovik -n "__fish_seen_subcommand_from check" -l strict
complete -c tovik -n "__fish_seen_subcommand_from check" -l quiet
complete -c tovik -n "__fish_seen_subcommand_from check" -l json
complete -c tovik -n "__fish_seen_subcommand_from check" -l params
complete -c tovik -n "__fish_seen_subcommand_from check" -l set
complete -c tovik -n "__fish_seen_subcommand_from check" -l help
complete -c tovik -n "__fish_seen_subcommand_from verify" -l pick
complete -c tovik -n "__fish_seen_subcommand_from verify" -l tolerance
complete -c tovik -n "__fish_seen_subcommand_from verify" -l zeros
complete -c tovik -n "__fish_seen_subcommand_from verify" -l relax
complete -c tovik -n "__fish_seen_subcommand_from verify" -l json
complete -c tovik -n "__fish_seen_subcommand_from verify" -l params
complete -c tovik -n "__fish_seen_subcommand_from verify" -l set
complete -c tovik -n "__fish_seen_subcommand_from verify" -l help
complete -c tovik -n "__fish_seen_subcommand_from params" -l all
complete -c tovik -n "__fish_seen_subcommand_from params" -l params
complete -c tovik -n "__fish_seen_subcommand_from params" -l set
complete -c tovik -n "__fish_seen_subcommand_from params" -l time-limit
complete -c tovik -n "__fish_seen_subcommand_from params" -l ticks
complete -c tovik -n "__fish_seen_subcommand_from params" -l threads
complete -c tovik -n "__fish_seen_subcommand_from params" -l gap
complete -c tovik -n "__fish_seen_subcommand_from params" -l seed
complete -c tovik -n "__fish_seen_subcommand_from params" -l method
complete -c tovik -n "__fish_seen_subcommand_from params" -l help
complete -c tovik -l method -x -a "auto primal dual network barrier sifting concurrent"
