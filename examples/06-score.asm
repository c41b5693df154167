; A score: macros from an include file, names from a symbol file
;
; Shows:    .include and -I, macros with parameters, -s and a symbol file, -D
; Assemble: kiln-as -I include -s 06-score.sym -D BONUS=120 -o 06-score.xex 06-score.asm
; Expect:   on an Atari, the score 0620 in large golden digits.
;           The first subroutine, main, adds 250, 250 and BONUS to the score and prints it. Printing subtracts the
;           score digit by digit: $CB and $CC are 0 at the end.

; The file is looked up beside this one, then in the -I directories.
        .include "words.inc"

; A macro of this program. The body of a macro cannot use other macros, but it can call a subroutine.
.macro DIGIT number
        LDA #<number
        LDX #>number
        JSR printDigit

; With -s the names of that file replace the built-in ones. Because the assembler knows them from the start, it uses the
; short zero-page instructions for them.

digit0  = 16                    ; in the screen's character codes

        .org $3000

start:  JSR main
forever:
        JMP forever

main:   SETWORD score,0
        ADDWORD score,250
        ADDWORD score,250
        ADDWORD score,BONUS
        LDY #8                  ; in the middle of 20 letters
        DIGIT 1000
        DIGIT 100
        DIGIT 10
        DIGIT 1
        LDA #$1C
        STA COLOR0
        LDA SAVMSC              ; show the screen's first 20 letters, and no others
        STA row+1
        LDA SAVMSC+1
        STA row+2
        LDA #<displayList
        STA SDLSTL
        LDA #>displayList
        STA SDLSTH
        RTS

; Prints how many times a power of ten can be subtracted from the score, at column Y. The power is in A (low) and X
; (high).
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

; 12 times 8 empty lines, then a row of large letters.
displayList:
        .byte $70,$70,$70,$70,$70,$70,$70,$70,$70,$70,$70,$70
row:    .byte $47,0,0,$41
        .word displayList
