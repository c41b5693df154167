; Music in the vertical blank, under a picture that moves
;
; Shows:    a vertical-blank routine (SETVBV), three voices, a table that is drawn anew in each frame
; Assemble: kiln-as -o 12-music.xex 12-music.asm
; Expect:   on an Atari, the beginning of Pachelbel's Canon in D, over and over, while three bars swing up and down.
;           Each voice has a bar: its pitch decides the colour, its loudness the brightness. $CC counts the steps of the
;           music; pitch ($4100) and loudness ($4103) are the voices' states.

SETVBV  = $E45C                 ; takes a routine for the vertical blank: 7 in A, its address in X (high) and Y (low)
XITVBV  = $E462                 ; where such a routine ends

remaining = $CB                 ; frames until the next step
step    = $CC                   ; 0 to 63
hue     = $CD
faint   = $CE                   ; what is subtracted from a bar's brightness

bars    = $4000                 ; a colour for every second scan line, as VCOUNT counts them
pitch   = $4100                 ; of three voices
loudness = $4103                ; 4 times the volume

tone    = $A0                   ; a pure tone; add the volume, 0 to 15
stepLength = 11                 ; frames
firstBar = 18                   ; VCOUNT where a bar may begin
barSize = 15
lastLine = 124                  ; VCOUNT below the picture

        .org $3000

start:  JSR setUp
forever:
        JSR drawBars
        JSR showBars
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
        STA step
        LDX #5
.silent:
        STA pitch,X
        DEX
        BPL .silent
        LDA #3
        STA SKCTL
        LDA #1
        STA remaining
        LDY #<play
        LDX #>play
        LDA #7
        JMP SETVBV

; The system calls this in every vertical blank, whatever the program is doing, and has saved A, X and Y.
play:   DEC remaining
        BNE .fade
        LDA #stepLength
        STA remaining
        LDA step
        AND #31
        TAY
        LDA chords,Y            ; the third voice has a note in every step
        STA AUDF3
        STA pitch+2
        LDA #28
        STA loudness+2
        LDA step
        AND #3
        BNE .next
        LDA step                ; the others have one in every fourth
        LSR
        LSR
        TAY
        LDA melody,Y
        STA AUDF2
        STA pitch+1
        TYA
        AND #7
        TAY
        LDA ground,Y
        STA AUDF1
        STA pitch
        LDA #50
        STA loudness
        STA loudness+1
.next:  LDA step
        CLC
        ADC #1
        AND #63
        STA step
.fade:  LDX #2
.voice: LDA loudness,X
        BEQ .still
        DEC loudness,X
.still: LSR
        LSR
        ORA #tone
        PHA
        TXA
        ASL                     ; AUDC1, AUDC2 and AUDC3 are two bytes apart
        TAY
        PLA
        STA AUDC1,Y
        DEX
        BPL .voice
        JMP XITVBV

; Draws the table in black, then the three bars into it. The beam is below the picture meanwhile.
drawBars:
        LDX #lastLine
        LDA #0
.clear: STA bars,X
        DEX
        BPL .clear
        LDX #2
.bar:   LDA loudness,X
        LSR
        LSR
        EOR #$0F                ; a loud voice is not faint
        LSR
        STA faint
        LDA pitch,X
        ASL
        ASL
        AND #$F0
        STA hue
        LDA RTCLOK+2
        LSR
        CLC
        ADC delays,X            ; the bars follow each other
        AND #63
        TAY
        LDA swing,Y
        TAY
        TXA
        PHA
        LDX #0
.line:  LDA shape,X
        SEC
        SBC faint
        BCS .bright
        LDA #0
.bright:
        ORA hue
        STA bars+firstBar,Y
        INY
        INX
        CPX #barSize
        BNE .line
        PLA
        TAX
        DEX
        BPL .bar
        RTS

; Waits for the top of the picture, then gives each line its colour, down to the last.
showBars:
        LDX VCOUNT
        CPX #lastLine
        BCS showBars
.line:  LDX VCOUNT
        LDA bars,X
        STA WSYNC
        STA COLBK
        CPX #lastLine
        BCC .line
        RTS

; Half the brightness is even: the lowest bit does not count.
shape:  .byte 2,4,6,8,10,12,14,14,14,12,10,8,6,4,2

delays: .byte 0,10,20

; A sine: 44 and up to 44 more or less.
swing:
        .byte 44,48,53,57,61,65,68,72,75,78,81,83,85,86,87,88
        .byte 88,88,87,86,85,83,81,78,75,72,68,65,61,57,53,48
        .byte 44,40,35,31,27,23,20,16,13,10,7,5,3,2,1,0
        .byte 0,0,1,2,3,5,7,10,13,16,20,23,27,31,35,40

; Notes: the chip divides its clock by this number plus one. "s" is a sharp.
D3      = 215
Fs3     = 170
G3      = 161
A3      = 143
B3      = 127
Cs4     = 113
D4      = 107
E4      = 95
Fs4     = 85
G4      = 80
A4      = 71
B4      = 63
Cs5     = 56
D5      = 53
E5      = 47
Fs5     = 42

; Eight notes that return for ever, two melodies above them, and their chords, broken into four notes each.
ground: .byte D3,A3,B3,Fs3,G3,D3,G3,A3

melody: .byte Fs5,E5,D5,Cs5,B4,A4,B4,Cs5
        .byte D5,Cs5,B4,A4,G4,Fs4,G4,E4

chords: .byte D4,Fs4,A4,D5, Cs4,E4,A4,Cs5, D4,Fs4,B4,D5, Cs4,Fs4,A4,Cs5
        .byte B3,D4,G4,B4, D4,Fs4,A4,D5, B3,D4,G4,B4, Cs4,E4,A4,Cs5

; White for the title, black in the bars' place until they are drawn.
colours:
        .byte $0E,$0A,$00,$00,$00

displayList:
        .byte $70,$70,$70,$70,$70,$70,$70,$70,$70,$70
        .byte $47
        .word title
        .byte $70,$06
        .byte $41
        .word displayList

; CANON IN D in the first colour, JOHANN PACHELBEL in the second.
title:  .space 5
        .byte 35,33,46,47,46,0,41,46,0,36
        .space 5
        .space 2
        .byte 42+64,47+64,40+64,33+64,46+64,46+64,0
        .byte 48+64,33+64,35+64,40+64,37+64,44+64,34+64,37+64,44+64
        .space 2
