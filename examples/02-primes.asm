; Prime numbers: a sieve, a table of powers and a number printer in four colours
;
; Shows:    subroutines with local labels, tables, several segments, names for memory and for numbers
; Assemble: kiln-as -o 02-primes.xex 02-primes.asm
; Expect:   on an Atari, the 54 prime numbers below 256 in large letters, five in a row. The last digit of a number
;           decides its colour. The count is left in $4100 and the numbers from $4101 on.

; Memory that the program uses but does not load needs no bytes in the file: a name is enough. (A name defined in the
; program always gives the three-byte form of an instruction; the two-byte form for the zero page needs a number or a
; built-in name such as SAVMSC.)
crossed = $4000                 ; 256 bytes, not 0 for a number that is not a prime
count   = $4100
primes  = $4101
number  = $CB                   ; in the part of the zero page that the system leaves to programs
zero    = $CC
column  = $CD
ink     = $CE

        .org $3000

start:  JSR main
forever:
        JMP forever

main:   JSR sieve
        JSR collect
        JSR print
        JMP show                ; a JSR and an RTS in one

; Crosses out all multiples of 2, 3, 5, ... up to 15. The multiples of a prime below its square are also multiples of a
; smaller prime, so each prime begins at its square.
;
; A label that begins with "." is local: it belongs to the last full label above it. There is a sieve.clear and a
; collect.skip, and each routine can have its own .loop.
sieve:  LDA #0
        TAX
.clear: STA crossed,X
        INX
        BNE .clear
        LDX #2
.candidate:
        LDA crossed,X
        BNE .next
        STX number
        LDA squares,X
.cross: TAY
        STA crossed,Y           ; anything but 0
        CLC
        ADC number
        BCC .cross              ; a carry means 256 or more
.next:  INX
        CPX #16
        BNE .candidate
        RTS

; Lists the numbers that are not crossed out, from 2 on.
collect:
        LDY #0
        LDX #2
.loop:  LDA crossed,X
        BNE .skip
        TXA
        STA primes,Y
        INY
.skip:  INX
        BNE .loop
        STY count
        RTS

; Prints the list, with each number in four columns.
print:  LDA #0
        STA column
        TAX
.loop:  LDA primes,X
        JSR printNumber
        INX
        CPX count
        BNE .loop
        RTS

; Shows the text screen's memory in rows of 20 large letters. The system says where it is.
show:   LDA SAVMSC
        STA rows+1
        LDA SAVMSC+1
        STA rows+2
        LDX #4
.colour:
        LDA colours,X
        STA COLOR0,X
        DEX
        BPL .colour
        LDA #<displayList
        STA SDLSTL
        LDA #>displayList
        STA SDLSTH
        RTS

; Prints A, which is 1 to 255, after spaces; keeps X. A digit is how many times a power of ten can be subtracted.
printNumber:
        STA number
        TXA : PHA               ; " : ", with its spaces, separates two statements in a line
        LDA #space
        STA zero                ; what to print for the digit 0: a space until another digit has been printed
        JSR printCode
        LDX #0
.digit: LDY #digit0
        LDA number
.subtract:
        SEC
        SBC powers,X
        BCC .done
        STA number
        INY
        BNE .subtract
.done:  CPY #digit0
        BEQ .isZero
        LDA #digit0
        STA zero
        TYA
        BNE .print
.isZero:
        LDA zero
.print: JSR printCode
        INX
        CPX #3
        BNE .digit
        AND #15                 ; the last digit, whose code is 16 more
        TAX
        LDA inks,X
        STA ink
        LDX #3
        LDY column
.paint: DEY                     ; back over the three digits
        LDA (SAVMSC),Y
        ORA ink
        STA (SAVMSC),Y
        DEX
        BNE .paint
        PLA : TAX
        RTS

; Puts the character A on the screen, whose address the system keeps in SAVMSC.
printCode:
        LDY column
        STA (SAVMSC),Y
        INC column
        RTS

; The tables, far from the code: a gap of 256 bytes or more begins another segment of the file.
        .org $3200

powers: .byte 100,10,1

; A smaller gap is filled with zeros, and the segment continues. This aligns a table.
        .org $3210

squares:
        .byte 0*0,1*1,2*2,3*3,4*4,5*5,6*6,7*7,8*8,9*9,10*10,11*11,12*12,13*13,14*14,15*15

; Which of four colours a number has, by its last digit: the highest two bits of large letters select it.
inks:   .byte 0,0,$40,$40,0,$80,0,$80,0,$C0

; Lemon for 1, coral for 3 (and 2), sky for 7 (and 5), mint for 9; dark blue behind them.
colours:
        .byte $1C,$3A,$9C,$BA,$90

; 11 rows of 20 large letters (7). The address after the first is that of the screen, stored by the program.
displayList:
        .byte $70,$70,$70,$70
rows:   .byte $47,0,0
        .byte 7,7,7,7,7,7,7,7,7,7
        .byte $41
        .word displayList

; Numbers can have names too, and a name may be used before its definition. The screen has its own character codes.
space   = 0
digit0  = 16
