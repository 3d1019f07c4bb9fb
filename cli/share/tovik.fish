# Completion of fish for the program tovik: verbs, their options and what these take.
function __tovik_verb -d "the verb of the command line is one of these; without one it is solve"
    set -l words (commandline -opc)
    set -l verb solve
    contains -- "$words[2]" convert display check verify params help; and set verb $words[2]
    contains -- $verb $argv
end
function __tovik_first -d "nothing but the program has been typed"
    test (count (commandline -opc)) -eq 1
end
function __tovik_parameters -d "names of parameters, each with = and its meaning"
    tovik params 2>/dev/null | string match -rv "^name " | string replace -r "^(\S+)\s.*\s\s(\S.*)\$" "\$1=\t\$2"
end
complete -c tovik -n __tovik_first -a "solve convert display check verify params help"
complete -c tovik -n "__tovik_verb help" -f -a "solve convert display check verify params"
complete -c tovik -n "__tovik_verb solve" -r -F -l params
complete -c tovik -n "__tovik_verb solve" -x -a "(__tovik_parameters)" -l set
complete -c tovik -n "__tovik_verb solve" -s t -x -l time-limit
complete -c tovik -n "__tovik_verb solve" -x -l ticks
complete -c tovik -n "__tovik_verb solve" -x -l threads
complete -c tovik -n "__tovik_verb solve" -x -l nodes
complete -c tovik -n "__tovik_verb solve" -x -l gap
complete -c tovik -n "__tovik_verb solve" -x -l seed
complete -c tovik -n "__tovik_verb solve" -x -a "auto primal dual network barrier sifting concurrent" -l method
complete -c tovik -n "__tovik_verb solve" -l relax
complete -c tovik -n "__tovik_verb solve" -l lenient
complete -c tovik -n "__tovik_verb solve" -s q -l quiet
complete -c tovik -n "__tovik_verb solve" -s v -l verbose
complete -c tovik -n "__tovik_verb solve" -s p -l print
complete -c tovik -n "__tovik_verb solve" -r -F -l basis
complete -c tovik -n "__tovik_verb solve" -r -F -l start
complete -c tovik -n "__tovik_verb solve" -r -F -l solution
complete -c tovik -n "__tovik_verb solve" -l exact
complete -c tovik -n "__tovik_verb solve" -x -l populate
complete -c tovik -n "__tovik_verb solve" -r -F -l filters
complete -c tovik -n "__tovik_verb solve" -r -F -l pool-solutions
complete -c tovik -n "__tovik_verb solve" -r -F -l write-basis
complete -c tovik -n "__tovik_verb solve" -r -F -l write-model
complete -c tovik -n "__tovik_verb solve" -r -F -l log
complete -c tovik -n "__tovik_verb solve" -l json
complete -c tovik -n "__tovik_verb solve" -l statistics
complete -c tovik -n "__tovik_verb solve" -l exit-zero
complete -c tovik -n "__tovik_verb solve" -l version
complete -c tovik -n "__tovik_verb solve" -s h -l help
complete -c tovik -n "__tovik_verb convert" -l lenient
complete -c tovik -n "__tovik_verb convert" -r -F -l params
complete -c tovik -n "__tovik_verb convert" -x -a "(__tovik_parameters)" -l set
complete -c tovik -n "__tovik_verb convert" -s h -l help
complete -c tovik -n "__tovik_verb display" -r -F -l params
complete -c tovik -n "__tovik_verb display" -x -a "(__tovik_parameters)" -l set
complete -c tovik -n "__tovik_verb display" -s h -l help
complete -c tovik -n "__tovik_verb check" -x -l most
complete -c tovik -n "__tovik_verb check" -l strict
complete -c tovik -n "__tovik_verb check" -s q -l quiet
complete -c tovik -n "__tovik_verb check" -l json
complete -c tovik -n "__tovik_verb check" -r -F -l params
complete -c tovik -n "__tovik_verb check" -x -a "(__tovik_parameters)" -l set
complete -c tovik -n "__tovik_verb check" -s h -l help
complete -c tovik -n "__tovik_verb verify" -x -l pick
complete -c tovik -n "__tovik_verb verify" -x -l tolerance
complete -c tovik -n "__tovik_verb verify" -l zeros
complete -c tovik -n "__tovik_verb verify" -l relax
complete -c tovik -n "__tovik_verb verify" -l json
complete -c tovik -n "__tovik_verb verify" -r -F -l params
complete -c tovik -n "__tovik_verb verify" -x -a "(__tovik_parameters)" -l set
complete -c tovik -n "__tovik_verb verify" -s h -l help
complete -c tovik -n "__tovik_verb params" -l all
complete -c tovik -n "__tovik_verb params" -r -F -l params
complete -c tovik -n "__tovik_verb params" -x -a "(__tovik_parameters)" -l set
complete -c tovik -n "__tovik_verb params" -s t -x -l time-limit
complete -c tovik -n "__tovik_verb params" -x -l ticks
complete -c tovik -n "__tovik_verb params" -x -l threads
complete -c tovik -n "__tovik_verb params" -x -l nodes
complete -c tovik -n "__tovik_verb params" -x -l gap
complete -c tovik -n "__tovik_verb params" -x -l seed
complete -c tovik -n "__tovik_verb params" -x -a "auto primal dual network barrier sifting concurrent" -l method
complete -c tovik -n "__tovik_verb params" -s h -l help
