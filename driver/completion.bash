# Completion of kbaudit for bash: folders and *.kb files, or any file if there are none of them.
_kbaudit() {
  local word=${COMP_WORDS[COMP_CWORD]}
  COMPREPLY=()
  if [ "$COMP_CWORD" -gt 1 ]; then
    return # the program ignores what follows
  elif [[ $word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '-h -help' -- "$word")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -X '!*.[kK][bB]' -- "$word"; compgen -d -- "$word")
    [ ${#COMPREPLY[@]} -gt 0 ] || mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -F _kbaudit kbaudit
