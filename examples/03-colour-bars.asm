; Colour bars: an interrupt in every eighth line of the picture
;
; Shows:    a display-list interrupt, a sum in an operand
; Assemble: kiln-as -o 03-colour-bars.xex 03-colour-bars.asm
; Expect:   on an Atari, 24 bars in the colours of the rainbow from side to side.
;           setUp leaves the address of nextBar in $0200 and $0201. Each call of nextBar, as an interrupt, puts one
;           colour of the table into COLBK ($D01A); VCOUNT ($D40B) decides which one.

        .org $3000

start:  JSR setUp
forever:
        JMP forever

setUp:  LDA #<nextBar
        STA VDSLST
        LDA #>nextBar
        STA VDSLST+1
        LDA #<displayList
        STA SDLSTL
        LDA #>displayList
        STA SDLSTH
        LDA #0
        STA COLOR4              ; the background at the top of the picture: black
        LDA #$C0                ; allow display-list interrupts besides those of the vertical blank
        STA NMIEN
        RTS

; The beam is in the last line above a bar. VCOUNT is half its line number, so a quarter of VCOUNT counts the bars; it
; is 3 above the first one, because the picture begins 8 lines down and with 24 empty lines.
nextBar:
        PHA
        TXA : PHA
        LDA VCOUNT
        LSR : LSR
        TAX
        LDA colours-3,X
        STA WSYNC               ; waits for the end of the line
        STA COLBK
        PLA : TAX
        PLA
        RTI

; One for each bar from top to bottom, and black for the border below.
colours:
        .byte $14,$24,$34,$44,$54,$64,$74,$84,$94,$A4,$B4,$C4
        .byte $CA,$BA,$AA,$9A,$8A,$7A,$6A,$5A,$4A,$3A,$2A,$1A
        .byte $00

; $70 is 8 empty lines; $F0 is the same with an interrupt in the last of them.
displayList:
        .byte $70,$70,$F0
        .byte $F0,$F0,$F0,$F0,$F0,$F0,$F0,$F0
        .byte $F0,$F0,$F0,$F0,$F0,$F0,$F0,$F0
        .byte $F0,$F0,$F0,$F0,$F0,$F0,$F0,$F0
        .byte $41
        .word displayList
