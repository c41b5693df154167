; A Commodore program: it starts from BASIC with RUN
;
; Shows:    a PRG file, a line of BASIC in bytes, .string
; Assemble: kiln-as -f prg -o 07-commodore.prg 07-commodore.asm
; Expect:   on a Commodore 64, LOAD and RUN clear the screen, print a greeting and turn the border green.
;           LIST shows the line 10 SYS 2064. The routine at 2064 sends the text to CHROUT ($FFD2), leaves 5 in
;           $D020 and returns.

; A PRG file begins with its load address, which is that of its first byte, and has no start address. (Without -f, an
; output name that ends in ".prg" selects this format too.)

CHROUT  = $FFD2
border  = $D020

        .org $0801              ; where BASIC programs begin

        .word endOfLine         ; the address of the next line
        .word 10                ; the number of this one
        .byte $9E               ; SYS
        .byte $20,$32,$30,$36,$34       ; " 2064", digit by digit
        .byte 0
endOfLine:
        .word 0                 ; no further line

        .org 2064               ; the same as $0810; the gap is filled with zeros

start:  LDX #0
.next:  LDA text,X
        BEQ .done
        JSR CHROUT
        INX
        BNE .next
.done:  LDA #5
        STA border
        RTS

; .string writes the bytes between the quotes and a 0 after them. Capitals have the same codes here as in ASCII. A
; string must not contain a colon: everything before it would be a label.
text:   .byte 147               ; clears the screen
        .string "HELLO FROM MACHINE CODE"
