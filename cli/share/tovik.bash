# Completion of bash for the program tovik: verbs, their options, files.
_tovik() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} verb=solve options
  COMPREPLY=()
  case ${COMP_WORDS[1]} in convert | display | check | verify | params | help) verb=${COMP_WORDS[1]} ;; esac
  case $before in
    --method) COMPREPLY=($(compgen -W "auto primal dual network barrier sifting concurrent" -- "$word")); return ;;
    help) COMPREPLY=($(compgen -W "solve convert display check verify params" -- "$word")); return ;;
    --set) COMPREPLY=($(compgen -S = -W "$(tovik params 2>/dev/null | awk 'NR > 1 { print $1 }')" -- "${word^^}"))
      compopt -o nospace; return ;;
  esac
  case $verb in
    solve) options="--params --set --time-limit --ticks --threads --nodes --gap --seed --method --relax --lenient --quiet --verbose --print --basis --start --solution --exact --populate --filters --pool-solutions --write-basis --write-model --log --json --statistics --exit-zero --version --help" ;;
    convert) options="--lenient --params --set --help" ;;
    display) options="--params --set --help" ;;
    check) options="--most --strict --quiet --json --params --set --help" ;;
    verify) options="--pick --tolerance --zeros --relax --json --params --set --help" ;;
    params) options="--all --params --set --time-limit --ticks --threads --nodes --gap --seed --method --help" ;;
    help) options="" ;;
  esac
  if [[ $word == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$word"))
  else
    COMPREPLY=($(compgen -f -- "$word"))
    if ((COMP_CWORD == 1)); then COMPREPLY+=($(compgen -W "solve convert display check verify params help" -- "$word")); fi
  fi
}
complete -o filenames -F _tovik tovik
