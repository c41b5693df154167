 .shadow_ranges $C000-$CFFF
 .shadow_stage $FFF0
 .org $C000
 .byte 1,2,3
 .space 100
 .org $2000
 RTS
