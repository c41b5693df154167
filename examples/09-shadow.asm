; Under the ROM: code and text in the memory that the operating system hides
;
; Shows:    .shadow_ranges and .shadow_stage
; Assemble: kiln-as -o 09-shadow.xex 09-shadow.asm
; Expect:   on an Atari XL or XE, HIDDEN UNDER THE ROM in the text screen's first line.
;           The first subroutine, show, prints it at the address in $58 and $59; the ROM is on again afterwards.

; Bytes for these addresses cannot be loaded there, because the loader itself needs the ROM. They are loaded to the
; stage address instead, together with a small routine that moves them while the file is still loading. The stage must
; be free until then; afterwards its memory can be used.
        .shadow_ranges $C000-$CFFF
        .shadow_stage $3800

romBit  = 1                     ; in PORTB; the ROM is on while it is 1

        .org $3000

start:  JSR show
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
        JSR print
        LDA PORTB
        ORA #romBit
        STA PORTB
        LDA #$40
        STA NMIEN
        PLP
        RTS

        .org $C000

print:  LDY #textEnd-text-1
.loop:  LDA text,Y
        STA (SAVMSC),Y
        DEY
        BPL .loop
        RTS

; HIDDEN UNDER THE ROM, in the screen's character codes.
text:   .byte 40,41,36,36,37,46, 0, 53,46,36,37,50, 0, 52,40,37, 0, 50,47,45
textEnd:
