" Vim with the configuration in editors/vim: types of files, compilers, and what vim-lsp is told. Run by
" tests/clients/run in a copy of program/; it writes what has failed.
scriptencoding utf-8
set encoding=utf-8 hidden
filetype plugin on
set shellpipe=>%s\ 2>&1

" What :make lists, as "file:line:column type text".
function! Made(compiler) abort
  execute 'compiler' a:compiler
  silent make!
  let made = filter(getqflist(), 'v:val.valid')
  return map(made, {_, e -> printf('%s:%d:%d %s %s', fnamemodify(bufname(e.bufnr), ':t'), e.lnum, e.col, e.type, e.text)})
endfunction

edit lib.inc
call assert_equal('kiln ;\ %s', &filetype . ' ' . escape(&commentstring, ' '))
call setline(6, '        poke 709,ten')
write
call assert_equal(["lib.inc:6:18 w 'ten' is not defined: it counts as 0 [undefined]"], Made('kiln'))

call setline(6, '        poke 709,10')
write

" Messages that name the line alone, or nothing, have the file that :make assembles.
edit main.asm
call setline(5, '        JSR drew')
write
call assert_equal([
      \ "main.asm:0:0 w undefined symbol 'drew', using 0",
      \ 'main.asm:5:0 w JSR drew resolves to $0000 — probable undefined symbol (compiler internal error?)',
      \ ], Made('kiln-as'))

execute 'source' expand('<sfile>:h') . '/file_types.vim'

let g:registered = {}
function! lsp#register_server(server) abort
  let g:registered = a:server
endfunction
function! lsp#utils#path_to_uri(path) abort
  return 'file://' . a:path
endfunction
runtime plugin/kiln.vim
doautocmd User lsp_setup
call assert_equal('kiln-lsp', g:registered.name)
call assert_equal(['kiln-lsp'], g:registered.cmd({}))
call assert_equal('file://' . getcwd(), g:registered.root_uri({}))
call assert_equal({'inlayHints': v:true}, g:registered.initialization_options)

call writefile(empty(v:errors) ? ['Vim: all passed'] : v:errors, 'vim.out')
execute empty(v:errors) ? 'qall!' : 'cquit!'
