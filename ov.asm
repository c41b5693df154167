 .org $3FF0
 .space 20
 RTS
 .bank one
draw: RTS
 .bank one2
big: .space 5
 LDA #1
