; A melody: notes from two tables, which write themselves down as they sound
;
; Shows:    sound, names for numbers, tables that belong together, colours for each scan line
; Assemble: kiln-as -o 05-melody.xex 05-melody.asm
; Expect:   on an Atari, Beethoven's Ode to Joy, over and over, and its notes on two staves.
;           When a note begins, its pitch goes to AUDF1 ($D200) and a full tone to AUDC1 ($D201); shortly before it
;           ends, AUDC1 is 0. $CC counts the notes, and $4000 and $4100 hold the staves.

remaining = $CB                 ; frames until the next note
note    = $CC                   ; its number
place   = $CD                   ; where the current note is written: the address of its staff
inStaff = $CF                   ; and its place there

tone    = $A0                   ; a pure tone; add the volume, 0 to 15
volume  = 10
gap     = 2                     ; frames of silence, to separate equal notes

staves  = $4000                 ; two of them, 256 bytes apart, with 5 rows of 20 letters each
staff   = 100                   ; bytes
phrase  = 15                    ; notes in each

        .org $3000

start:  JSR setUp
forever:
        JSR play
        JSR shine
        JMP forever

setUp:  LDX #4
.colour:
        LDA colours,X
        STA COLOR0,X
        DEX
        BPL .colour
        LDA #<displayList
        STA SDLSTL
        LDA #>displayList
        STA SDLSTH
        LDA #0
        STA AUDCTL
        LDA #3
        STA SKCTL
        LDA #1
        STA remaining           ; the first frame begins the first note

; The notes begin anew, on empty staves.
rewind: LDX #staff-1
        LDA #line
.clear: STA staves,X
        STA staves+256,X
        DEX
        BPL .clear
        LDA #0
        STA note
        STA place
        STA inStaff             ; no note is written yet; this is the margin
        LDA #>staves
        STA place+1
        RTS

play:   DEC remaining
        BEQ .next
        LDA remaining
        CMP #gap
        BNE .done
        LDA #0
        STA AUDC1
.done:  RTS

.next:  LDY note
        LDA notes,Y
        CMP #last
        BNE .sound
        JSR rewind
        LDY #0
.sound: LDX notes,Y
        LDA pitches,X
        STA AUDF1
        LDA #tone+volume
        STA AUDC1
        LDA lengths,Y
        STA remaining

; Writes the note X, the Yth, in the colour of the note that sounds; the one before gets the other colour.
        TYA
        PHA
        LDY inStaff
        LDA (place),Y
        AND #$BF
        STA (place),Y
        PLA
        CMP #phrase
        BCC .first
        BNE .second
        INC place+1             ; the second staff
.second:
        SBC #phrase
.first: CLC
        ADC places,X
        STA inStaff
        TAY
        LDA letters,X
        STA (place),Y
        INC note
        RTS

; Until the next frame, the first colour changes in every scan line. The hue is in the upper half of a colour and the
; brightness in the lower half, so the line's number makes a rainbow; the 8 keeps it bright.
shine:  LDX RTCLOK+2
.line:  LDA VCOUNT
        ORA #8
        STA WSYNC
        STA COLPF0
        CPX RTCLOK+2
        BEQ .line
        RTS

; Notes.
c       = 0
d       = 1
e       = 2
f       = 3
g       = 4
last    = 255

; The chip divides its clock by this number plus one.
pitches:
        .byte 121,108,96,91,81

; Where the first note of a phrase stands in its staff: each row has 20 letters, and a margin of 2.
places: .byte 4*20+2,3*20+2,2*20+2,1*20+2,2

; C to G as the screen counts letters, in the second colour; a line of the staff in the third.
letters:
        .byte 35+$40,36+$40,37+$40,38+$40,39+$40
line    = 13+$80

; Lengths, in frames.
quarter = 20
eighth  = quarter/2
dotted  = quarter+eighth
half    = quarter*2

notes:  .byte e,e,f,g, g,f,e,d, c,c,d,e, e,d,d
        .byte e,e,f,g, g,f,e,d, c,c,d,e, d,c,c
        .byte last

lengths:
        .byte quarter,quarter,quarter,quarter, quarter,quarter,quarter,quarter
        .byte quarter,quarter,quarter,quarter, dotted,eighth,half
        .byte quarter,quarter,quarter,quarter, quarter,quarter,quarter,quarter
        .byte quarter,quarter,quarter,quarter, dotted,eighth,half

; The first is painted by shine; white for the note that sounds, blue for the staves, gold for the title.
colours:
        .byte $00,$0E,$84,$1A,$00

displayList:
        .byte $70,$70,$70
        .byte $47
        .word title
        .byte $20
        .byte $47
        .word staves
        .byte 7,7,7,7
        .byte $70
        .byte $47
        .word staves+256
        .byte 7,7,7,7
        .byte $41
        .word displayList

; ODE TO JOY, in the fourth colour.
fourth  = $C0
title:  .space 5
        .byte 47+fourth,36+fourth,37+fourth,0,52+fourth,47+fourth,0,42+fourth,47+fourth,57+fourth
        .space 5
