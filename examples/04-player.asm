; A player: a shape that the joystick moves over the screen
;
; Shows:    player graphics, tables of steps, how to write a negative number
; Assemble: kiln-as -o 04-player.xex 04-player.asm
; Expect:   on an Atari, a red ball on the text screen; a joystick in the first port moves it.
;           setUp leaves 120 in $CB (x) and 60 in $CC (y), and the shape from $3A3C on. Each call of move reads the
;           joystick in $0278, changes x and y by one at most, puts x into HPOSP0 ($D000) and draws the shape at y.

STICK0  = $0278                 ; not among the built-in names
left    = 48
right   = 200
top     = 16
bottom  = 100

ballX   = $CB
ballY   = $CC

graphics = $3800                ; must be a multiple of 1024
player  = graphics+512          ; 128 bytes, each for two lines of the picture

        .org $3000

start:  JSR setUp
forever:
        JSR move
        JSR waitForFrame
        JMP forever

setUp:  LDX #127
        LDA #0
.clear: STA player,X
        DEX
        BPL .clear
        LDA #120
        STA ballX
        LDA #60
        STA ballY
        LDA #>graphics
        STA PMBASE
        LDA #$36
        STA PCOLR0
        LDA #$2E                ; the picture, players and missiles
        STA SDMCTL
        LDA #2                  ; show players
        STA GRACTL
        JMP draw

; A step beyond the edge is not taken.
move:   LDX STICK0
        LDA ballX
        CLC
        ADC stepX,X
        CMP #left
        BCC .vertical
        CMP #right+1
        BCS .vertical
        STA ballX
.vertical:
        LDA ballY
        CLC
        ADC stepY,X
        CMP #top
        BCC draw
        CMP #bottom+1
        BCS draw
        STA ballY

; The shape has an empty line above and below, which erases the old position after a step.
draw:   LDA ballX
        STA HPOSP0
        LDX #0
        LDY ballY
.row:   LDA shape,X
        STA player,Y
        INY
        INX
        CPX #shapeEnd-shape
        BNE .row
        RTS

; The system counts frames in the last of the three bytes of RTCLOK.
waitForFrame:
        LDA RTCLOK+2
.same:  CMP RTCLOK+2
        BEQ .same
        RTS

; A bit of the joystick is 0 when it is pushed: 1 is up, 2 is down, 4 is left and 8 is right, so 15 is the middle and 7
; is right. There is no sign for negative numbers; -1 is written as 0-1.
stepX:  .byte 0,0,0,0, 1,1,1,1, 0-1,0-1,0-1,0-1, 0,0,0,0
stepY:  .byte 0,1,0-1,0, 0,1,0-1,0, 0,1,0-1,0, 0,1,0-1,0

shape:  .byte %00000000
        .byte %00111100
        .byte %01111110
        .byte %11011011
        .byte %11111111
        .byte %11011011
        .byte %01100110
        .byte %00111100
        .byte %00000000
shapeEnd:
