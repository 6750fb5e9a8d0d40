# Completion of quillpad-home for bash, and through its bridge for zsh, which has no mapfile and no compopt and takes "path" for
# PATH. The words are asked of the program itself, so they are those of its version.

# The commands that a help text lists.
_quillpad_home_commands() {
  sed -n '/^Commands:\|^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p'
}

# Offers the lines that are read.
_quillpad_home_offer() {
  if command -v mapfile >/dev/null; then
    mapfile -t COMPREPLY
  else
    local IFS=$'\n'
    COMPREPLY=($(cat))
  fi
}

_quillpad_home() {
  local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local topic=() help index
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      -*) break ;;
      *) topic+=("${COMP_WORDS[index]}") ;;
    esac
  done
  while ! help=$("$program" help "${topic[@]}" 2>/dev/null) && [ ${#topic[@]} -gt 0 ]; do
    topic=("${topic[@]:0:${#topic[@]}-1}")
  done

  case $previous in
    -o | --entry | --token-file | --extension | --samples | --check | --switchboard)
      compopt -o filenames 2>/dev/null
      _quillpad_home_offer < <(compgen -f -- "$word")
      return
      ;;
  esac
  local words
  words=$(_quillpad_home_commands <<<"$help"; grep -oE '^ +-[-a-z, ]+' <<<"$help" | tr ', ' '\n\n')
  case ${topic[0]-} in
    placeholder | snapshot | timeline | tap | render | tree)
      [ ${#topic[@]} -gt 1 ] || words+=" $("$program" list 2>/dev/null | cut -d' ' -f1)"
      ;;
  esac
  _quillpad_home_offer < <(compgen -W "$words" -- "$word")
}

complete -F _quillpad_home quillpad-home
