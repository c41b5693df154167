 .org $2000
 JSR draw
 RTS
 .bank one
draw: RTS
 .bank two
big: .space $4001
 LDA #1
