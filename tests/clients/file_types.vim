" Which files are sources of kiln-as: those that say so, and those below a .kiln that have no other language. Run by
" Vim and by Neovim in a folder with a .kiln; the folder above has none. Failures are in v:errors.
for [name, line, type] in [
      \ ['some.asm', ' NOP', 'kiln'],
      \ ['some.inc', ' NOP', 'kiln'],
      \ ['page.inc', '<?php', 'php'],
      \ ['.kiln', 'main.asm', 'kilnproject'],
      \ ['../some.asm', ' NOP', 'another'],
      \ ['../some.inc', ' NOP', 'another'],
      \ ['../some.s', ' NOP', 'another'],
      \ ['../named.inc', '; for kiln-as', 'kiln'],
      \ ['../named.s', '; for kiln-as', 'kiln'],
      \ ['../quoted.asm', ' .ascii "kiln-as"', 'another']]
  call writefile([line], name)
  execute 'silent edit!' name
  call assert_equal(type, &filetype =~# 'kiln\|php' ? &filetype : 'another', name)
  if type ==# 'kiln'
    call assert_equal('; %s, 1', &commentstring . ', ' . &expandtab, name)
  endif
endfor
