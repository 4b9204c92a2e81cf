# Completion of kbdiff for bash.
_kbdiff() {
  local word=${COMP_WORDS[COMP_CWORD]}
  COMPREPLY=()
  if [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" --help 2>/dev/null | grep -o -e '--[a-z0-9-]*' | sort -u)" -- "$word")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -F _kbdiff kbdiff
