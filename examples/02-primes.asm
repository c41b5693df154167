; Prime numbers: a sieve, a table of powers and a number printer
;
; Shows:    subroutines with local labels, tables, several segments, names for memory and for numbers
; Assemble: kiln-as -o 02-primes.xex 02-primes.asm
; Expect:   on an Atari, the 54 prime numbers below 256 on the text screen, ten in a row.
;           The first subroutine, main, leaves their count in $4100 and the numbers from $4101 on.

; Memory that the program uses but does not load needs no bytes in the file: a name is enough. (With names of its own
; a program always gets the three-byte form of an instruction; the two-byte form for the zero page comes with a number
; or with a name that is built in, like SAVMSC.)
crossed = $4000                 ; 256 bytes, not 0 where a number is known to be no prime
count   = $4100
primes  = $4101
number  = $CB                   ; in the zero page, in the part that the system leaves to programs
zero    = $CC
column  = $CD

        .org $3000

start:  JSR main
forever:
        JMP forever

main:   JSR sieve
        JSR collect
        JMP print               ; a JSR and an RTS in one

; Crosses out all multiples of 2, 3, 5, ... up to 15. The multiples of a prime below its square are multiples of a
; smaller prime as well, so that each begins at its square.
;
; A label that begins with "." is local: it belongs to the last full label above it. There is a sieve.clear and a
; collect.skip, and each routine can have a .loop of its own.
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

; Lists what is not crossed out, from 2 on.
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

; Prints the list, every number in four columns.
print:  LDA #0
        STA column
        TAX
.loop:  LDA primes,X
        JSR printNumber
        INX
        CPX count
        BNE .loop
        RTS

; Prints A, which is 1 to 255, behind spaces; X is kept. A digit is how often a power of ten can be taken away.
printNumber:
        STA number
        TXA : PHA               ; two statements in one line need " : " with its spaces
        LDA #space
        STA zero                ; what to print for a digit 0: a space as long as no other digit came
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
        TYA
        JSR printCode
        LDA #digit0
        STA zero
        BNE .more
.isZero:
        LDA zero
        JSR printCode
.more:  INX
        CPX #3
        BNE .digit
        PLA : TAX
        RTS

; Puts the character A onto the screen, whose address the system keeps in SAVMSC.
printCode:
        LDY column
        STA (SAVMSC),Y
        INC column
        RTS

; The tables, far from the code: a gap of 256 bytes and more begins another segment of the file.
        .org $3200

powers: .byte 100,10,1

; A smaller gap is filled with zeros, and the segment goes on. This aligns a table.
        .org $3210

squares:
        .byte 0*0,1*1,2*2,3*3,4*4,5*5,6*6,7*7,8*8,9*9,10*10,11*11,12*12,13*13,14*14,15*15

; Numbers can have names too, and a definition may stand behind its use. The screen counts characters in its own way.
space   = 0
digit0  = 16
