" Vim syntax file for the language of kiln-as, an assembler for the 6502.
if exists('b:current_syntax')
  finish
endif

syntax case ignore

syntax keyword kilnInstruction ADC AND ASL BCC BCS BEQ BIT BMI BNE BPL BRA BRK BVC BVS CLC CLD CLI CLV CMP CPX CPY DEC
syntax keyword kilnInstruction DEX DEY EOR INC INX INY JMP JSR LDA LDX LDY LSR NOP ORA PHA PHP PLA PLP ROL ROR RTI RTS
syntax keyword kilnInstruction SBC SEC SED SEI STA STX STY TAX TAY TSX TXA TXS TYA
syntax keyword kilnExtension ADD PHX PHY PLL PLX PLY PSH

syntax match kilnOperator "[-+*/#<>=]"
syntax match kilnNumber "\<\d\+\>"
syntax match kilnNumber "\<\d\x*h\>"
syntax match kilnNumber "\$-\=\x\+"
syntax match kilnNumber "%[01]\+"
syntax match kilnRegister ",\s*\zs\%(SP\|X\|Y\)\>"
syntax match kilnRegister "\<SP\ze\s*,"

" A reference to a local label; where it is defined, it is a label.
syntax match kilnLocal "\%(\w\)\@1<!\.\h\w*"
syntax match kilnLabel "^\s*[.>]\=\h\w*:"
syntax match kilnLabel "\s:\s\+\zs[.>]\=\h\w*:"
syntax match kilnName "^\s*\zs\h\w*\ze\s*="
syntax match kilnName "\s:\s\+\zs\h\w*\ze\s*="

" A data directive is followed by a space; a tab does not do.
syntax match kilnDirective "\%(\w\)\@1<!\.\%(org\|byte\|word\|long\|string\|space\) \@="
syntax match kilnDirective "\%(\w\)\@1<!\.\%(bank\|code_regions\|shadow_ranges\|shadow_stage\) \@="
syntax match kilnDirective "\%(\w\)\@1<!\.\%(spill_point\|cloaked_segment\|cloaked_segment_end\)\>"
syntax match kilnInclude "^\s*\.include " nextgroup=kilnFile
syntax match kilnFile "[^;]*" contained
syntax match kilnMacro "^\s*\.macro " nextgroup=kilnMacroName skipwhite
syntax match kilnMacroName "[^[:blank:];]\+" contained nextgroup=kilnParameter skipwhite
syntax match kilnParameter "[^;]\+" contained

syntax match kilnString '"[^"]*"\='
syntax match kilnComment ";.*$" contains=kilnTodo,@Spell
syntax keyword kilnTodo TODO FIXME XXX NOTE contained

highlight default link kilnInstruction Statement
highlight default link kilnExtension Keyword
highlight default link kilnOperator Operator
highlight default link kilnNumber Number
highlight default link kilnRegister Special
highlight default link kilnLocal Identifier
highlight default link kilnLabel Label
highlight default link kilnName Identifier
highlight default link kilnDirective PreProc
highlight default link kilnInclude Include
highlight default link kilnFile String
highlight default link kilnMacro Macro
highlight default link kilnMacroName Function
highlight default link kilnParameter Type
highlight default link kilnString String
highlight default link kilnComment Comment
highlight default link kilnTodo Todo

let b:current_syntax = 'kiln'
