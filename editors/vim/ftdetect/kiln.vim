" Many assemblers use the ending .asm, and many languages .inc: a file is taken for kiln-as when a comment in its first
" lines names it, or when a .kiln stands in its folder or in one above. With let g:kiln_asm = 1 all these files are.
" Vim has taken it for another type before, whose settings may not say how to undo them.
autocmd BufNewFile,BufRead *.asm,*.inc,*.s
      \ if kiln#isSource(expand('<afile>')) | unlet! b:did_ftplugin | set filetype=kiln | endif
autocmd BufNewFile,BufRead .kiln set filetype=kilnproject
