# Completion of vxfoundation for bash. What can be completed is read from the tool's own help.

_vxfoundation() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} path=() word help words
  help=$(command vxfoundation --help 2>/dev/null)
  for word in "${COMP_WORDS[@]:1:COMP_CWORD - 1}"; do
    [[ $word == [a-z]* && $help == *$'\n'"  $word "* ]] || continue
    path+=("$word")
    help=$(command vxfoundation "${path[@]}" --help 2>/dev/null)
  done
  if [[ $previous =~ ^--[a-z-]+$ && $help =~ $'\n'" "*(-.,)?"$previous "[A-Z] ]]; then
    words=$(sed -nE "s/^ +(-.,)?$previous [^ ]*:\{([^}]*)\}.*/\2/p" <<<"$help")
  else
    words=$(sed -nE 's/^ +(-.,)?(--[a-z0-9-]+).*/\2/p; s/^  ([a-z][a-z0-9-]*) .*/\1/p
                     s/^  [A-Z]+ [^ ]*:\{([^}]*)\}.*/\1/p' <<<"$help")
  fi
  mapfile -t COMPREPLY < <(compgen -W "${words//,/ }" -- "$current")
}

complete -o default -F _vxfoundation vxfoundation
