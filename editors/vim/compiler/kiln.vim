" :compiler kiln, then :make checks the program, writes nothing, and :cnext goes through the findings. Where kiln-check
" is not installed, it assembles the file instead, as :compiler kiln-as does.
if exists('current_compiler')
  finish
endif
if !executable('kiln-check')
  runtime compiler/kiln-as.vim
  finish
endif
let current_compiler = 'kiln'

if exists(':CompilerSet') != 2
  command -nargs=* CompilerSet setlocal <args>
endif

let s:folder = kiln#folderWith(expand('%'), '.kiln')
if s:folder ==# ''
  CompilerSet makeprg=kiln-check\ $*\ %:S
else
  " Without an input, kiln-check checks every line of the .kiln. Its paths begin in that folder.
  let s:command = '(echo kiln-check: in ' . shellescape(s:folder, 1) . '; cd ' . shellescape(s:folder, 1)
        \ . ' && kiln-check $*)'
  execute 'CompilerSet makeprg=' . escape(s:command, ' \|"')
endif
" The lines of source below a finding may look like one.
CompilerSet errorformat=%-G\ %#%\\d%#\ \|%.%#,
CompilerSet errorformat+=%Dkiln-check:\ in\ %f,
CompilerSet errorformat+=%f:%l:%c:\ %trror:\ %m,
CompilerSet errorformat+=%f:%l:%c:\ %tarning:\ %m,
CompilerSet errorformat+=%f:%l:%c:\ %tote:\ %m,
CompilerSet errorformat+=kiln-check:\ %m,
CompilerSet errorformat+=%-G%.%#
