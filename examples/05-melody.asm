; A melody: notes from two tables, one step in every frame
;
; Shows:    sound, names for numbers, tables that belong together
; Assemble: kiln-as -o 05-melody.xex 05-melody.asm
; Expect:   on an Atari, Beethoven's Ode to Joy, over and over.
;           setUp prepares the sound chip. Each call of play is one frame: it puts the next pitch into AUDF1 ($D200)
;           and a full tone into AUDC1 ($D201) when a note begins, and silence into AUDC1 shortly before it ends.

remaining = $CB                 ; frames until the next note
note    = $CC                   ; its number

tone    = $A0                   ; a pure tone; add the volume, 0 to 15
volume  = 10
gap     = 2                     ; frames of silence, to separate equal notes

        .org $3000

start:  JSR setUp
forever:
        JSR play
        JSR waitForFrame
        JMP forever

setUp:  LDA #0
        STA AUDCTL
        STA note
        LDA #3
        STA SKCTL
        LDA #1
        STA remaining           ; the first frame begins the first note
        RTS

play:   DEC remaining
        BEQ .next
        LDA remaining
        CMP #gap
        BNE .done
        LDA #tone
        STA AUDC1
.done:  RTS

.next:  LDX note
        LDA pitches,X
        BNE .sound
        TAX                     ; after the last note, start again with the first
        LDA pitches
.sound: STA AUDF1
        LDA #tone+volume
        STA AUDC1
        LDA lengths,X
        STA remaining
        INX
        STX note
        RTS

waitForFrame:
        LDA RTCLOK+2
.same:  CMP RTCLOK+2
        BEQ .same
        RTS

; Pitches: the chip divides its clock by this number plus one.
c       = 121
d       = 108
e       = 96
f       = 91
g       = 81

; Lengths, in frames.
quarter = 20
eighth  = quarter/2
dotted  = quarter+eighth
half    = quarter*2

pitches:
        .byte e,e,f,g, g,f,e,d, c,c,d,e, e,d,d
        .byte e,e,f,g, g,f,e,d, c,c,d,e, d,c,c
        .byte 0                 ; the end

lengths:
        .byte quarter,quarter,quarter,quarter, quarter,quarter,quarter,quarter
        .byte quarter,quarter,quarter,quarter, dotted,eighth,half
        .byte quarter,quarter,quarter,quarter, quarter,quarter,quarter,quarter
        .byte quarter,quarter,quarter,quarter, dotted,eighth,half
