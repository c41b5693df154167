" Vim syntax file for .kiln: command lines of kiln-as.
if exists('b:current_syntax')
  finish
endif

syntax match kilnProjectOption "\%(^\|\s\)\zs-\S\+"
syntax match kilnProjectString '"[^"]*"\='
syntax match kilnProjectComment "^#.*$" contains=@Spell

highlight default link kilnProjectOption Special
highlight default link kilnProjectString String
highlight default link kilnProjectComment Comment

let b:current_syntax = 'kilnproject'
