#compdef quillpad-home
# Completion of quillpad-home for zsh: the one for bash, through zsh's own bridge.
autoload -Uz bashcompinit && bashcompinit
source ${functions_source[_quillpad-home]:A:h:h:h}/bash-completion/completions/quillpad-home
_bash_complete -F _quillpad_home quillpad-home
