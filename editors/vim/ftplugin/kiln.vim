if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal comments=:; commentstring=;\ %s
setlocal formatoptions-=t formatoptions+=croql
" A directive is followed by a space; after a tab it would vanish.
setlocal expandtab
setlocal include=^\\s*\\.include\\s suffixesadd=.asm,.inc
let b:undo_ftplugin = 'setlocal comments< commentstring< formatoptions< expandtab< include< suffixesadd<'
