; Star Catcher: a small complete game, in several files
;
; Shows:    a program of several files with macros, players and their collisions, sound effects, a sky of many colours
; Assemble: kiln-as -o 13-game.xex 13-game.asm
; Expect:   on an Atari, a title that waits for the trigger. Then the joystick moves a basket, and each star in it is
;           worth 10 points. After five stars comes the next, faster level; three lost stars end the game.
;           $D0 counts the lives, $D1 the level and $D2 the stars of this level; $5000 begins with the score's digits.

        .include "game/names.inc"
        .include "game/macros.inc"

        .org $3000

start:  JSR setUpScreen
        JSR setUpSound
title:  JSR showTitle
        JSR newGame
.play:  JSR frame
        JSR moveBasket
        JSR meetStars
        JSR moveStars
        LDA lives
        BNE .play
        JSR endGame
        JMP title

        .include "game/play.inc"
        .include "game/stars.inc"
        .include "game/title.inc"
        .include "game/screen.inc"
        .include "game/sound.inc"
