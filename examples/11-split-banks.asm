; Split banks: code from one bank works on data from others
;
; Shows:    a window in two halves, .bank for code, .org for data
; Assemble: kiln-as -L 11-split-banks.lnk -o 11-split-banks.xex 11-split-banks.asm
; Expect:   nothing to see, it returns at once. $3F00 holds 10+20+30+40 = 100 and $3F01 holds 1+2+3+4 = 10.

; Code banks and data banks are numbered separately, each from 1, in the order of the source. Put the named banks first:
; then __bank_sums agrees with these numbers. Data banks have no names.

        .org $3000

total   = $90
tens    = 1
ones    = 2

; The names of the registers begin with two underscores.
start:  LDA #tens
        STA __bank_data_reg
        JSR addUp
        LDA total
        STA $3F00
        LDA #ones
        STA __bank_data_reg
        JSR addUp
        LDA total
        STA $3F01
        LDA #0
        STA __bank_data_reg
        RTS

; Adds up the four numbers of the selected data bank.
        .bank sums

addUp:  LDA #0
        LDX #3
.loop:  CLC
        ADC numbers,X
        DEX
        BPL .loop
        STA total
        RTS

        .org $6000

numbers:
        .byte 10,20,30,40

        .org $6000

        .byte 1,2,3,4
