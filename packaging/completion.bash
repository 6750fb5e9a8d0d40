# Completion of quillpad-home for bash. The words are asked of the program itself, so they are those of its version.

# The commands that a help text lists.
_quillpad_home_commands() {
  sed -n '/^Commands:\|^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p'
}

_quillpad_home() {
  local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local path=() help index
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      -*) break ;;
      *) path+=("${COMP_WORDS[index]}") ;;
    esac
  done
  while ! help=$("$program" help "${path[@]}" 2>/dev/null) && [ ${#path[@]} -gt 0 ]; do
    unset 'path[-1]'
  done

  case $previous in
    -o | --entry | --token-file | --extension | --samples | --check | --switchboard)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      return
      ;;
  esac
  local words
  words=$(_quillpad_home_commands <<<"$help"; grep -oE '^ +-[-a-z, ]+' <<<"$help" | tr ', ' '\n\n')
  case ${path[0]-} in
    placeholder | snapshot | timeline | tap | render | tree)
      [ ${#path[@]} -gt 1 ] || words+=" $("$program" list 2>/dev/null | cut -d' ' -f1)"
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _quillpad_home quillpad-home
