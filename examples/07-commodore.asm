; A Commodore program: it starts from BASIC with RUN
;
; Shows:    a PRG file, a line of BASIC in bytes, .string
; Assemble: kiln-as -f prg -o 07-commodore.prg 07-commodore.asm
; Expect:   on a Commodore 64, LOAD and RUN clear the screen, print a greeting and turn the border green.
;           LIST shows the line 10 SYS 2064. The routine at 2064 sends the text to CHROUT ($FFD2), leaves 5 in
;           $D020 and returns.

; A PRG file begins with the address to load it to, which is that of its first byte, and has no start address. (The
; name of the output file alone would do: an ending of ".prg" asks for this format too.)

CHROUT  = $FFD2
border  = $D020

        .org $0801              ; where BASIC programs lie

        .word endOfLine         ; the address of the next line
        .word 10                ; the number of this one
        .byte $9E               ; SYS
        .byte $20,$32,$30,$36,$34       ; " 2064", one digit after the other
        .byte 0
endOfLine:
        .word 0                 ; no further line

        .org 2064               ; the same as $0810; the few bytes up to there are filled with zeros

start:  LDX #0
.next:  LDA text,X
        BEQ .done
        JSR CHROUT
        INX
        BNE .next
.done:  LDA #5
        STA border
        RTS

; .string writes the bytes between the quotes and a 0 behind them. Capitals have the same numbers here as in most
; places. No colon may stand in a string: all that is in front of it would be taken for a label.
text:   .byte 147               ; clears the screen
        .string "HELLO FROM MACHINE CODE"
