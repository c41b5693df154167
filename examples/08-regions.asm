; Code regions: a program in several separate ranges of memory
;
; Shows:    .code_regions, .spill_point, long branches, a macro that is used many times
; Assemble: kiln-as -l 08-regions.lst -o 08-regions.xex 08-regions.asm
; Expect:   nothing to see, it returns at once. $4000 and $4001 hold 200*123, $4002 and $4003 hold 0*77 and
;           $4004 and $4005 hold 30*30+40*40. The listing shows where everything went.

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

start:  LDA #200
        LDX #123
        JSR multiply
        STA $4000
        STX $4001
        LDA #0
        LDX #77
        JSR multiply
        STA $4002
        STX $4003
        LDA #30
        LDX #40
        JSR addSquares
        STA $4004
        STX $4005
        RTS

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
