# Completion of kbrepair for bash.
_kbrepair() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  case $word$before in # bash takes --option=value apart
    =*) word='' ;;
    *=) before=${COMP_WORDS[COMP_CWORD - 2]} ;;
  esac
  [[ " ${COMP_WORDS[*]:0:COMP_CWORD} " != *' -- '* ]] || before=-- # no options behind it
  case $before in
    --part) ;; # a number
    --reading) mapfile -t COMPREPLY < <(compgen -W "1 2" -- "$word") ;;
    *)
      if [[ $word == -* && $before != -- ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" --help 2>/dev/null | grep -o -e '--[a-z0-9-]*' | sort -u)" -- "$word")
      else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
      fi ;;
  esac
}
complete -F _kbrepair kbrepair
