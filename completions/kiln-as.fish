# Completion of kiln-as in fish. All options with one hyphen, even those with one letter, are "old" options here,
# because letters cannot be combined.

complete -c kiln-as -f
complete -c kiln-as -k -a '(__fish_complete_suffix .asm)'
complete -c kiln-as -o h -d 'Show the usage'
complete -c kiln-as -o v -l version -d 'Print the version'
complete -c kiln-as -o V -d 'Verbose'
complete -c kiln-as -o b -d 'Banked output'
complete -c kiln-as -l split-bank -d 'A bank window in two halves, each with its own register'
complete -c kiln-as -l data-window -x -d 'START:END, data window for --split-bank'
complete -c kiln-as -o L -x -k -a '(__fish_complete_suffix .lnk)' -d 'Layout file: bank windows and registers'
complete -c kiln-as -o f -x -a 'xex prg' -d 'Output format'
complete -c kiln-as -o s -x -k -a '(__fish_complete_suffix .sym)' -d 'Symbol file'
complete -c kiln-as -o o -r -F -d 'Output file'
complete -c kiln-as -o l -r -F -d 'Listing file'
complete -c kiln-as -o I -x -a '(__fish_complete_directories)' -d 'Directory to look for includes in'
complete -c kiln-as -o D -x -d 'Define a symbol: NAME or NAME=VALUE'
complete -c kiln-as -o e -x -d 'Start at a symbol'
complete -c kiln-as -o split-bank -d 'As --split-bank, but keeps the data window'
complete -c kiln-as -o code-window -x -d 'START-END, code window'
complete -c kiln-as -o data-window -x -d 'START-END, data window'
complete -c kiln-as -o code-reg -x -d 'Register of the code window'
complete -c kiln-as -o data-reg -x -d 'Register of the data window'
