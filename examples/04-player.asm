; A player: the joystick moves a ball through a field of walls and stars
;
; Shows:    player graphics, collisions, sound, text as a map, how to write a negative number
; Assemble: kiln-as -o 04-player.xex 04-player.asm
; Expect:   on an Atari, a field with a ball that a joystick in the first port moves. The ball stops at a wall with a
;           buzz, and rings while it is over a star. $CB and $CC hold its position, which is 120 and 60 at first.

STICK0  = $0278                 ; not among the built-in names
P0PF    = $D004                 ; which colours of the field player 0 has touched; the same place as HPOSM0

ballX   = $CB
ballY   = $CC
oldX    = $CD                   ; where the ball touched nothing
oldY    = $CE

graphics = $3800                ; must be a multiple of 1024
player  = graphics+512          ; 128 bytes, each for two lines of the picture
field   = $4000                 ; 12 rows of 20 letters

        .org $3000

start:  JSR setUp
forever:
        JSR waitForFrame
        JSR meet
        JSR draw
        JMP forever

setUp:  LDX #127
        LDA #0
.clear: STA player,X
        DEX
        BPL .clear
        LDX #4
.colour:
        LDA colours,X
        STA COLOR0,X
        DEX
        BPL .colour
        LDA #<displayList
        STA SDLSTL
        LDA #>displayList
        STA SDLSTH
        LDA #120
        STA ballX
        STA oldX
        LDA #60
        STA ballY
        STA oldY
        LDA #>graphics
        STA PMBASE
        LDA #$0E
        STA PCOLR0
        LDA #$2E                ; the picture, players and missiles
        STA SDMCTL
        LDA #2                  ; show players
        STA GRACTL
        LDA #0
        STA AUDCTL
        LDA #3
        STA SKCTL
        JMP drawField

; The picture of the last frame tells what the ball touches: bit 0 is the first colour, the walls, and bit 1 the second,
; the stars.
meet:   LDA P0PF
        STA HITCLR              ; forget it
        LSR
        BCS .wall
        LSR
        BCC .nothing
        LDA #40                 ; a star: a high pure tone
        STA AUDF1
        LDA #$A8
        STA AUDC1
        BNE move
.nothing:
        LDA #0
        STA AUDC1
        BEQ move
.wall:  LDA #180                ; a low buzz, and a step back
        STA AUDF1
        LDA #$C8
        STA AUDC1
        LDA oldX
        STA ballX
        LDA oldY
        STA ballY
        RTS

move:   LDX STICK0
        LDA ballX
        STA oldX
        CLC
        ADC stepX,X
        STA ballX
        LDA ballY
        STA oldY
        CLC
        ADC stepY,X
        STA ballY
        RTS

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

; Turns the text of the map into the screen's codes, which are 32 less. Each .string ends with a zero byte, which is left
; out.
drawField:
        LDX #0
        LDY #0
.next:  LDA map,X
        BEQ .skip
        SEC
        SBC #32
        CMP #10                 ; a star
        BNE .store
        ORA #$40                ; the second colour
.store: STA field,Y
        INY
.skip:  INX
        CPX #mapEnd-map
        BNE .next
        RTS

; A bit of the joystick is 0 when it is pushed: 1 is up, 2 is down, 4 is left and 8 is right, so 15 is the middle and 7
; is right. There is no sign for negative numbers; -1 is written as 0-1.
stepX:  .byte 0,0,0,0, 0,1,1,1, 0,0-1,0-1,0-1, 0,0,0,0
stepY:  .byte 0,0,0,0, 0,1,0-1,0, 0,1,0-1,0, 0,1,0-1,0

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

; Brick walls and golden stars on a lawn.
colours:
        .byte $28,$1E,$00,$00,$B4

; 12 rows of 20 large letters, one for each row of the map.
displayList:
        .byte $70,$70,$70,$47
        .word field
        .byte 7,7,7,7,7,7,7,7,7,7,7,$41
        .word displayList

map:    .string "####################"
        .string "#   *   #          #"
        .string "#       #     *    #"
        .string "#   #   #          #"
        .string "#   #      #   #####"
        .string "#   #      #       #"
        .string "#   #      #    *  #"
        .string "# * #              #"
        .string "#   #######   #    #"
        .string "#             #    #"
        .string "#      *      #  * #"
        .string "####################"
mapEnd:
