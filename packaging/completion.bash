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

_quillpad_home_offer_files() {
  compopt -o filenames 2>/dev/null # zsh has no such options
  _quillpad_home_offer < <(compgen -f -- "$1")
}

_quillpad_home() {
  local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local topic=() given=0 help index words
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      --extension) index=$((index + 1)) ;;
      -*) break ;;
      *) topic+=("${COMP_WORDS[index]}") ;;
    esac
  done
  if [ "${topic[0]-}" = help ]; then
    words=$("$program" help "${topic[@]:1}" 2>/dev/null | _quillpad_home_commands)
    _quillpad_home_offer < <(compgen -W "$words" -- "$word")
    return
  fi
  while ! help=$("$program" help "${topic[@]}" 2>/dev/null) && [ ${#topic[@]} -gt 0 ]; do
    topic=("${topic[@]:0:${#topic[@]}-1}")
    given=$((given + 1))
  done

  # What the option before takes, as "FILE" or "TEXT:{png,svg,json}".
  local value=
  case $previous in
    --extension) value=PATH ;;
    -*) value=$(sed -n "s/^ *\(-.,\)\{0,1\}$previous\(,--[a-z]*\)\{0,1\} \([A-Z][^ =]*\).*/\3/p" <<<"$help" 2>/dev/null) ;;
  esac
  case $value in
    "") ;;
    *{*)
      words=${value#*\{}
      words=${words%\}*}
      _quillpad_home_offer < <(compgen -W "${words//,/ }" -- "$word")
      return
      ;;
    FILE | FOLDER | PATH | *.png)
      _quillpad_home_offer_files "$word"
      return
      ;;
    NAME) ;; # of --accept, which needs none
    *) return ;;
  esac

  if [ "${topic[0]-}" = compare ] && [[ $word != -* ]]; then
    _quillpad_home_offer_files "$word"
    return
  fi
  words=$(_quillpad_home_commands <<<"$help"; grep -oE '^ +-[-a-z, ]+' <<<"$help" | tr ', ' '\n\n' | grep -vx -e -h)
  case ${topic[0]-} in
    placeholder | snapshot | timeline | tap | render | tree)
      [ $given -gt 0 ] || words+=" $("$program" list 2>/dev/null | tail -n +2 | cut -d' ' -f1)"
      ;;
  esac
  _quillpad_home_offer < <(compgen -W "$words" -- "$word")
}

complete -F _quillpad_home quillpad-home
