; Code regions: a program that finds room in several pieces of memory
;
; Shows:    .code_regions, .spill_point, branches that lead too far, a macro that is used many times
; Assemble: kiln-as -l 08-regions.lst -o 08-regions.xex 08-regions.asm
; Expect:   nothing to see, it returns at once. $4000 and $4001 hold 200*123, $4002 and $4003 hold 0*77 and
;           $4004 and $4005 hold 30*30+40*40. The listing shows where everything went.

; Where the code may lie. It fills the first region, goes on in the second behind a JMP that is put in by itself, and
; so on. Whoever puts data between such code gives it a label in the same line, or the label stays behind.
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

; One binary digit of a product: doubles what there is and adds the other factor if the digit is 1. The label is a
; parameter, for otherwise it would be the same each time; and it is indented, because the macro ends at the first line
; that is not.
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

; A times X, to A (low) and X (high). A branch reaches about 127 bytes, but .zero is farther away, and so is the end of
; the step that lies across two regions. A branch that leads too far becomes one with the opposite condition over a
; JMP. Its line is written anew for this, so keep labels out of it.
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

; A times A and X times X added up, to A (low) and X (high).
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
