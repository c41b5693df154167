; Code regions: a program in several separate ranges of memory
;
; Shows:    .code_regions, .spill_point, long branches, a macro that is used many times
; Assemble: kiln-as -l 08-regions.lst -o 08-regions.xex 08-regions.asm
; Expect:   on an Atari, 200*123=24600, 0*77=0 and 30*30+40*40=2500 in large letters. $4000 to $4005 hold the three
;           results, two bytes each. The listing shows where everything went.

; Where the code may be. It fills the first region, continues in the second after a JMP that the assembler inserts, and
; so on. Put the label of data between such code in the line of the data, or the label stays behind.
        .org $3000
        .code_regions $3000-$306F,$3100-$31CF,$3400-$34FF

factor  = $CB
other   = $CC
low     = $CD
high    = $CE
sum     = $CF                   ; two bytes
side    = $D1
column  = $D2
digits  = $D3                   ; not 0 after the first digit of a number

start:  JSR setUp
        LDA #200
        LDX #123
        JSR multiply
        STA $4000
        STX $4001
        LDY #0
        JSR print
        LDA #0
        LDX #77
        JSR multiply
        STA $4002
        STX $4003
        LDY #20
        JSR print
        LDA #30
        LDX #40
        JSR addSquares
        STA $4004
        STX $4005
        LDY #40
        JSR print
forever:
        JMP forever

; One binary digit of a product: doubles the sum and adds the other factor if the digit is 1. The label is a parameter,
; because otherwise it would be the same each time; and it is indented, because the macro ends at the first line that is
; not.
.macro STEP next
        ASL low
        ROL high
        ASL factor
        BCC next
        CLC
        LDA low
        ADC other
        STA low
        BCC next
        INC high
        next:

; A times X, to A (low) and X (high). A branch reaches about 127 bytes, but .zero is further away, and so is the end of
; the step that spans two regions. A branch that is out of range becomes the opposite branch over a JMP. Its whole line
; is replaced, so keep labels out of it.
multiply:
        STA factor
        STX other
        LDA #0
        STA low
        STA high
        CPX #0
        BEQ .zero
        STEP .bit6
        STEP .bit5
        STEP .bit4
        STEP .bit3
        STEP .bit2
        STEP .bit1
        STEP .bit0
        STEP .zero
        LDA low
        LDX high
        RTS

; From here to the next such point, or to the end, the code stays together: if it does not fit, it moves to the next
; region as a whole.
        .spill_point

; A*A + X*X, to A (low) and X (high).
addSquares:
        STX side
        TAX
        JSR multiply
        STA sum
        STX sum+1
        LDA side
        TAX
        JSR multiply
        CLC
        ADC sum
        TAY
        TXA
        ADC sum+1
        TAX
        TYA
        RTS

        .spill_point

; Prints the line of text at Y, which ends with an equals sign, and the number in A (low) and X (high).
print:  STA low
        STX high
        STY column
.copy:  LDY column
        LDA texts,Y
        STA (SAVMSC),Y
        INC column
        CMP #equals
        BNE .copy
        LDX #0
        STX digits
.power: LDY #0
.again: LDA low                 ; how many times can a power of ten be subtracted?
        CMP powersLow,X
        LDA high
        SBC powersHigh,X
        BCC .done
        STA high
        LDA low
        SBC powersLow,X
        STA low
        INY
        BNE .again
.done:  TYA
        ORA digits
        BNE .digit
        CPX #4
        BNE .next               ; a zero at the front
.digit: INC digits
        TYA
        ORA #$50                ; digits are 16 to 25; the second colour
        LDY column
        STA (SAVMSC),Y
        INC column
.next:  INX
        CPX #5
        BNE .power
        RTS

; Three rows of large letters, on black. Outside of all regions code and data go where .org says.
        .org $3600

setUp:  LDA SAVMSC
        STA rows+1
        LDA SAVMSC+1
        STA rows+2
        LDA #$9C                ; pale blue, and yellow for the results
        STA COLOR0
        LDA #$1C
        STA COLOR1
        LDA #<displayList
        STA SDLSTL
        LDA #>displayList
        STA SDLSTH
        RTS

displayList:
        .byte $70,$70,$70,$70,$70,$70,$70,$70
rows:   .byte $47,0,0,$70,7,$70,7,$41
        .word displayList

powersLow:
        .byte <10000,<1000,100,10,1
powersHigh:
        .byte >10000,>1000,0,0,0

; 200*123=, 0*77= and 30*30+40*40= in the screen's codes.
equals  = 29
texts:  .byte 18,16,16,10,17,18,19,equals,0,0,0,0,0,0,0,0,0,0,0,0
        .byte 16,10,23,23,equals,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0
        .byte 19,16,10,19,16,11,20,16,10,20,16,equals
