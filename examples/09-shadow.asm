; Under the ROM: code and a picture in the memory that the operating system hides
;
; Shows:    .shadow_ranges and .shadow_stage, a picture in binary numbers
; Assemble: kiln-as -o 09-shadow.xex 09-shadow.asm
; Expect:   on an Atari XL or XE, a ghost and HIDDEN UNDER THE ROM on the text screen.
;           The first subroutine, show, lets the hidden code draw both on the screen whose address is in $58 and $59;
;           the ROM is on again afterwards.

; Bytes for these addresses cannot be loaded there, because the loader itself needs the ROM. They are loaded to the
; stage address instead, together with a small routine that moves them while the file is still loading. The stage must
; be free until then; afterwards its memory can be used.
        .shadow_ranges $C000-$CFFF
        .shadow_stage $3800

romBit  = 1                     ; in PORTB; the ROM is on while it is 1

row     = $CB                   ; the address of a row of the screen
pixels  = $CD                   ; 8 points of the picture
rows    = $CE                   ; that are still to be drawn

        .org $3000

start:  LDA #$60                ; violet paper, pale ink
        STA COLOR2
        LDA #$0E
        STA COLOR1
        LDA #$60
        STA COLOR4
        JSR show
forever:
        JMP forever

; Without the ROM, interrupts have no vectors, so they are turned off.
show:   PHP
        SEI
        LDA #0
        STA NMIEN
        LDA PORTB
        AND #$FF-romBit
        STA PORTB
        JSR draw
        LDA PORTB
        ORA #romBit
        STA PORTB
        LDA #$40
        STA NMIEN
        PLP
        RTS

        .org $C000

; A point is a blank or an inverse blank. Each row of the screen has 40 letters; the picture begins in the third row
; and takes 16 letters in the middle.
draw:   LDA SAVMSC
        CLC
        ADC #92
        STA row
        LDA SAVMSC+1
        ADC #0
        STA row+1
        LDA #16
        STA rows
        LDX #0
.row:   LDY #0
.half:  LDA ghost,X
        INX
        STA pixels
.point: LDA #0
        ASL pixels
        BCC .store
        LDA #$80
.store: STA (row),Y
        INY
        CPY #8
        BEQ .half
        CPY #16
        BNE .point
        CLC
        LDA row
        ADC #40
        STA row
        BCC .same
        INC row+1
.same:  DEC rows
        BNE .row

; The row after the next one, from its tenth letter on; `row` is 12 letters into the next one.
        LDX #0
        LDY #38
.letter:
        LDA text,X
        STA (row),Y
        INY
        INX
        CPX #textEnd-text
        BNE .letter
        RTS

ghost:  .byte %00000111,%11100000
        .byte %00011111,%11111000
        .byte %00111111,%11111100
        .byte %01110011,%11001110
        .byte %01100001,%10000110
        .byte %01100001,%10000110
        .byte %11110011,%11001111
        .byte %11111111,%11111111
        .byte %11111110,%01111111
        .byte %11111100,%00111111
        .byte %11111100,%00111111
        .byte %11111110,%01111111
        .byte %01111111,%11111110
        .byte %01111111,%11111110
        .byte %00111011,%11011100
        .byte %00010001,%10001000

; HIDDEN UNDER THE ROM, in the screen's character codes.
text:   .byte 40,41,36,36,37,46, 0, 53,46,36,37,50, 0, 52,40,37, 0, 50,47,45
textEnd:
