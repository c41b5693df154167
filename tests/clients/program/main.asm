; A program in two files
        .org $2000
start:  LDA #65
        STA COLBK
        JSR draw
.loop:  JMP .loop
        .include lib.inc
