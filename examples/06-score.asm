; A score: macros from an include file, names from a symbol file
;
; Shows:    .include and -I, macros with parameters, -s and a symbol file, -D
; Assemble: kiln-as -I include -s 06-score.sym -D BONUS=120 -o 06-score.xex 06-score.asm
; Expect:   on an Atari, 0620 at the left end of the text screen's first line.
;           The first subroutine, main, adds 250, 250 and BONUS to the score and prints it. The score itself is taken
;           away digit by digit: $CB and $CC are 0 in the end.

; The file is looked for beside this one and then in the directories given with -I.
        .include "words.inc"

; A macro of this program. The body of a macro cannot use other macros, but it can call a subroutine.
.macro DIGIT number
        LDA #<number
        LDX #>number
        JSR printDigit

; With -s the built-in names are gone, and those of the file are there instead. As the assembler knows them from the
; start, it uses the short instructions for the zero page with them.

digit0  = 16                    ; as the screen counts its characters

        .org $3000

start:  JSR main
forever:
        JMP forever

main:   SETWORD score,0
        ADDWORD score,250
        ADDWORD score,250
        ADDWORD score,BONUS
        LDY #0
        DIGIT 1000
        DIGIT 100
        DIGIT 10
        DIGIT 1
        RTS

; Prints how often a power of ten can be taken away from the score, at column Y. The power is in A (low) and X (high).
printDigit:
        STA power
        STX power+1
        LDX #digit0
.again: SUBFROM score,power
        BCC .done
        INX
        BNE .again
.done:  ADDFROM score,power
        TXA
        STA (SAVMSC),Y
        INY
        RTS
