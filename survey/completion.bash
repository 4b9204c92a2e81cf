# Completion of kbsurvey for bash.
_kbsurvey() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  case $word$before in # bash takes --option=value apart
    =*) word='' ;;
    *=) before=${COMP_WORDS[COMP_CWORD - 2]} ;;
  esac
  [[ " ${COMP_WORDS[*]:0:COMP_CWORD} " != *' -- '* ]] || before=-- # no options behind it
  case $before in
    --explain)
      mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" --list-findings 2>/dev/null | cut -d ' ' -f 1)" -- "$word")
      return ;;
    -j | --jobs)
      mapfile -t COMPREPLY < <(compgen -W "$(seq "$(nproc)")" -- "$word")
      return ;;
    --color)
      mapfile -t COMPREPLY < <(compgen -W "auto always never" -- "$word")
      return ;;
    --shard | --name) return ;;
  esac
  if [[ $word == -* && ! $before =~ ^--(|json|junit|html|resume|baseline|files-from)$ ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" --help 2>/dev/null | grep -o -e '--[a-z0-9-]*' | sort -u)" -- "$word")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$word")
  fi
}
complete -F _kbsurvey kbsurvey
