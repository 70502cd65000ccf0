# Completion of kvl for fish. The options are listed here; texts are completed by kvl itself.

function __kvl_text
    # The word so far, without the quote that begins it.
    kvl complete (commandline -ct | string replace -r '^[\'"]' '') 2>/dev/null
end

complete -c kvl -s h -l help -d 'Print help and exit'
complete -c kvl -l version -d 'Print the version and exit'
complete -c kvl -s c -x -a '(__kvl_text)' -d 'Run TEXT and exit'
complete -c kvl -l json -d 'Answer every command with one JSON object on one line'
complete -c kvl -l color -x -a 'auto always never' -d Colours
complete -c kvl -s q -l quiet -d 'No summary before the prompt, no word on refused modules'
complete -c kvl -s v -l verbose -d 'Tell which modules were not loaded'
complete -c kvl -l modules -d 'Load and unload the modules, tell how that went, and exit'
complete -c kvl -l no-modules -d 'Load no modules'
