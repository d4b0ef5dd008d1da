#compdef vxfoundation
# Completion of vxfoundation for zsh. What can be completed is read from the tool's own help.

_vxfoundation() {
  local previous=$words[CURRENT-1] word help
  local -a subcommands candidates
  help=$(command vxfoundation --help 2>/dev/null)
  for word in ${words[2,CURRENT-1]}; do
    [[ $word == [a-z]* && $help == *$'\n  '$word' '* ]] || continue
    subcommands+=$word
    help=$(command vxfoundation $subcommands --help 2>/dev/null)
  done
  if [[ $previous =~ '^--[a-z-]+$' ]] && grep -qE -- "^ +(-.,)?$previous [A-Z]" <<<$help; then
    candidates=(${(s:,:)"$(sed -nE "s/^ +(-.,)?$previous [^ ]*:\{([^}]*)\}.*/\2/p" <<<$help)"})
    (( $#candidates )) || { _files; return }
  else
    candidates=(${(f)"$(sed -nE 's/^ +(-.,)?(--[a-z0-9-]+).*/\2/p; s/^  ([a-z][a-z0-9-]*) .*/\1/p
                                 s/^  [A-Z]+ [^ ]*:\{([^}]*)\}.*/\1/p' <<<$help | tr , '\n')"})
  fi
  compadd -- $candidates
  [[ $words[CURRENT] == -* ]] || _files
}

_vxfoundation "$@"
