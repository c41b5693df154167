; Banks: subroutines at the same addresses, each in its own bank
;
; Shows:    -L with a layout file, .bank, calls from bank to bank
; Assemble: kiln-as -L 10-banks.lnk -o 10-banks.xex 10-banks.asm
; Expect:   nothing to see, it returns at once. $3F00 holds 5*5*5 = 125 and $3F01 holds 4*4*4 = 64.

; This is for a machine that shows one of many banks at $4000-$7FFF: the one whose number is in $82 and $83, or ordinary
; memory if that is 0. The layout file describes this. The program file selects each bank before it loads its bytes.

        .org $3000

number  = $90
square  = $91
product = $92

; A JSR into another bank is written as an ordinary JSR: the bank is selected on the way there and the old one on the
; way back. The assembler adds the code for this to the program, after the code in main memory.
start:  LDA #5
        STA number
        JSR cube
        LDA product
        STA $3F00
        LDA #4
        STA number
        JSR cube
        LDA product
        STA $3F01
        RTS

; Both of these begin at $4000. Banks have names and are numbered from 1 on; __bank_cubes is the number of this one.
        .bank cubes

cube:   JSR makeSquare          ; number*number, in the other bank
        LDA #0
        LDX number
.loop:  CLC
        ADC square
        DEX
        BNE .loop
        STA product
        RTS

        .bank squares

makeSquare:
        LDA #0
        LDX number
.loop:  CLC
        ADC number
        DEX
        BNE .loop
        STA square
        RTS
