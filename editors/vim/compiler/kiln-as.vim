" :compiler kiln-as, then :make assembles the file and :cnext goes through the messages.
if exists('current_compiler')
  finish
endif
let current_compiler = 'kiln-as'

if exists(':CompilerSet') != 2
  command -nargs=* CompilerSet setlocal <args>
endif

" Some messages name the line alone. They belong to the file that the first line of the output names. Vim pipes the
" last command only, hence the parentheses.
CompilerSet makeprg=(echo\ kiln-as:\ in\ %:S;\ kiln-as\ $*\ %:S)
CompilerSet errorformat=%-Pkiln-as:\ in\ %f,
CompilerSet errorformat+=kiln-as:\ %trror:\ line\ %l:\ %m,
CompilerSet errorformat+=kiln-as:\ %tarning:\ line\ %l:\ %m,
CompilerSet errorformat+=kiln-as:\ %trror:\ %f:%l:\ %m,
CompilerSet errorformat+=kiln-as:\ %tarning:\ %f:%l:\ %m,
CompilerSet errorformat+=kiln-as:\ %trror:\ %m,
CompilerSet errorformat+=kiln-as:\ %tarning:\ %m
