" Tells vim-lsp, where it is installed, of the language server. Neovim's own client: lua/kiln.lua.
if exists('g:loaded_kiln')
  finish
endif
let g:loaded_kiln = 1

augroup kiln
  autocmd!
  autocmd User lsp_setup if executable('kiln-lsp') | call kiln#registerServer() | endif
augroup END
