" Many assemblers use the ending .asm: a file is taken for kiln-as when one of its first lines names it. With
" let g:kiln_asm = 1 all files with these endings are.
autocmd BufNewFile,BufRead *.asm,*.inc,*.s
      \ if get(g:, 'kiln_asm') || match(getline(1, 20), 'kiln-as') >= 0 |
      \   set filetype=kiln |
      \ endif
