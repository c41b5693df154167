; Text and colours: a display list and two lines of text
;
; Shows:    labels, tables of bytes and words, the hardware's names, the two bytes of an address
; Assemble: kiln-as -o 01-text.xex 01-text.asm
; Expect:   on an Atari, HELLO ATARI in large letters of two colours and a line of small letters below.
;           setUp leaves the five colours in $02C4-$02C8 and the address of displayList in $0230 and $0231.

; A program starts at its first byte. COLOR0, SDLSTL and the like need no definition: the names of the Atari's system
; variables and hardware registers are built in.

        .org $3000

start:  JSR setUp
forever:
        JMP forever

setUp:  LDX #4
.next:  LDA colours,X           ; from the last colour to the first
        STA COLOR0,X
        DEX
        BPL .next
        LDA #<displayList       ; "<" is the low byte of an address, ">" the high byte
        STA SDLSTL
        LDA #>displayList
        STA SDLSTH
        RTS

; The values for COLOR0, COLOR1 and so on. A colour is 16 times its hue plus an even brightness of at most 14.
colours:
        .byte $1C               ; gold, the first colour of the large letters
        .byte $9E               ; pale blue, the second; the small letters have its brightness too
        .byte $92               ; dark blue behind the small letters
        .byte $46               ; red, not used here
        .byte $00               ; black, the background

; The picture from top to bottom, as the display processor ANTIC draws it, line by line.
displayList:
        .byte $70,$70,$70       ; each makes 8 empty scan lines
        .byte $70,$70,$70,$70
        .byte $47               ; a line of 20 large letters (7); the address of its bytes follows (+$40)
        .word largeLine
        .byte $70
        .byte $02               ; a line of 40 small letters, whose bytes follow those of the line above
        .byte $41               ; the end; the next picture begins
        .word displayList       ; at this address

; Text. There are no character literals, so letters are written as numbers. ANTIC has its own codes: the space is 0, the
; minus sign 13, the digits are 16 to 25 and the capitals A to Z are 33 to 58. Large letters have no lower case; adding
; 64 gives them the second colour instead.
second  = 64

largeLine:
        .space 4                ; four zero bytes, which are spaces
        .byte 40,37,44,44,47    ; HELLO
        .space 2
        .byte 33+second,52+second,33+second,50+second,41+second         ; ATARI
        .space 4

smallLine:
        .space 9
        .byte 33,51,51,37,45,34,44,37,36        ; ASSEMBLED
        .byte 0,55,41,52,40                     ; WITH
        .byte 0,43,41,44,46,13,33,51            ; KILN-AS
        .space 9
