# Completion of vxfoundation for fish. What can be completed is read from the tool's own help.

function __vxfoundation_candidates
    set -l words (commandline --tokenize --current-process --cut-at-cursor)
    set -l previous $words[-1]
    set -l subcommands
    set -l help (command vxfoundation --help 2>/dev/null)
    for word in $words[2..]
        string match --quiet --regex '^[a-z][a-z0-9-]*$' -- $word
        and string match --quiet -- "  $word *" $help
        or continue
        set --append subcommands $word
        set help (command vxfoundation $subcommands --help 2>/dev/null)
    end
    if string match --quiet --regex '^--[a-z-]+$' -- $previous
        and string match --quiet --regex -- "^ +(-.,)?$previous [A-Z]" $help
        string replace --filter --regex -- "^ +(?:-.,)?$previous [^ ]*:\{([^}]*)\}.*" '$1' $help | string split ,
    else
        string replace --filter --regex -- '^ +(?:-.,)?(--[a-z0-9-]+).*' '$1' $help
        string replace --filter --regex -- '^  ([a-z][a-z0-9-]*) .*' '$1' $help
        string replace --filter --regex -- '^  [A-Z]+ [^ ]*:\{([^}]*)\}.*' '$1' $help | string split ,
    end
end

complete --command vxfoundation --arguments '(__vxfoundation_candidates)'
