#!/usr/bin/env python3
"""tools/convert: what sources of other assemblers become, and what is refused. No other assembler is needed.

    tests/convert_test.py FOLDER   FOLDER has kiln-as, which must take every program that was converted whole
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tools" / "convert"))

from program import convert


class Conversion(unittest.TestCase):
    dialect = None
    programs = Path("build")

    def converted(self, source, plain_texts=True, **others):
        """Converts main.asm; others are more files, with "_" for "." in their names."""
        with tempfile.TemporaryDirectory() as folder:
            for name, text in {"main_asm": source.lstrip("\n"), **others}.items():
                (Path(folder) / name.replace("_", ".")).write_text(text)
            return convert(Path(folder) / "main.asm", self.dialect, plain_texts=plain_texts)

    def becomes(self, source, expected, **others):
        """Nothing is refused, and kiln-as takes the result without a word about unknown names."""
        program = self.converted(source, **others)
        self.assertEqual(program.messages, [])
        text = next(iter(program.texts.values()))
        self.assertEqual("\n".join(line.rstrip() for line in text.strip("\n").split("\n")), expected.strip("\n"))
        with tempfile.TemporaryDirectory() as folder:
            program.write(Path(folder))
            said = subprocess.run([self.programs / "kiln-as", "main.asm"], cwd=folder, capture_output=True, text=True)
        self.assertEqual((said.returncode, "undefined" in said.stderr), (0, False), said.stderr)

    def refused(self, source, *reasons):
        """Each reason is "line: some words of the message"; there are no more messages."""
        messages = [message.split("main.asm:")[1] for message in self.converted(source).messages]
        self.assertEqual(len(messages), len(reasons), messages)
        for message, reason in zip(messages, reasons):
            line, words = reason.split(": ", 1)
            self.assertTrue(message.startswith(line + ":") and words in message, message)


class From64tass(Conversion):
    dialect = "64tass"

    def test_value_decides_the_size_of_an_address(self):
        self.becomes("""
* = $2000
start   lda pointer
        lda pointer+1,x
        lda pointer,y
        lda (pointer),y
        lda start+1
        lda 2+3
        lda $0010
        stx late,y
pointer = $80
late    = $CB
""", """
        .org $2000
start:  lda $0+pointer
        lda $0+pointer+1,X
        lda pointer,Y
        lda (pointer),Y
        lda start+1
        lda $0+2+3
        lda $0010
        stx $0+late,Y
pointer = $80
late    = $CB
""")

    def test_a_label_with_a_built_in_name_is_not_taken_for_it(self):
        self.becomes("* = $2000\nSAVMSC lda SAVMSC\n", "        .org $2000\nSAVMSC: lda 0+SAVMSC\n")

    def test_low_and_high_byte_take_the_rest(self):
        self.becomes("* = $2000\nl lda #<l+1\n lda #(<l)+1\n lda #5+>l\n",
                     "        .org $2000\nl:      lda #<l+1\n        lda #(<l)+1\n        lda #5+(>l)\n")

    def test_unknown_operators_become_results(self):
        self.becomes("* = $2000\nbits = 1|4\n lda #bits<<4&$F0\n.word l*2,l/2,l>>4\nl\n", """
        .org $2000
bits    = 5                     ; = 1|4
        lda #$50                ; lda #bits<<4&$F0
        .word l*2,l/2,l/16
l:
""")

    def test_local_labels_keep_their_scope(self):
        # A label in a line of data begins no scope there, but would begin one here.
        self.becomes("""
* = $2000
main    ldx #5
_loop   dex
table   .byte 1
        bne _loop
_end    .word _end
-       jmp -
other   bne +
        jmp -
+       rts
""", """
        .org $2000
main:   ldx #5
.loop:  dex
>table: .byte 1
        bne .loop
.end_:  .word main.end_
.back_1: jmp .back_1
other:  bne .on_1
        jmp main.back_1
.on_1:  rts
""")

    def test_letter_case_does_not_matter(self):
        self.becomes("* = $2000\nStart JMP START\n", "        .org $2000\nStart:  JMP Start\n")

    def test_data(self):
        self.becomes("""
* = $2000
 .byte 1,"A",'B',-1
 .text "HI",0
 .text "A=B"
 .null "NO"
 .dword $12345678
 .rta $1235
 .fill 3,7
""", """
        .org $2000
        .byte 1,65,66,0-1
        .string "HI"
        .byte 65,61,66
        .string "NO"
        .long $12345678
        .word $1235-1
        .byte 7,7,7
""")

    def test_bytes_without_a_value_become_names(self):
        self.becomes("* = $80\nx1 .byte ?\nx2 .word ?\nx3 .fill 4\n* = $2000\n lda x2\n", """
x1      = $80
x2      = $81
x3      = $83
        .org $2000
        lda $0+x2
""")

    def test_macros_stay_where_kiln_makes_the_same(self):
        # In the second call $FF+1 is two bytes for kiln-as and three for 64tass; in the third the name is too short.
        self.becomes("""
ptr = $80
put .macro
 lda \\1
 lda \\1+1
 .endm
* = $2000
 put $1234
 put $FF
 put ptr
""", """
ptr     = $80
.macro put argument_a
        lda argument_a
        lda argument_a+1

        .org $2000
        put $1234
; put $FF
        lda $FF
        lda 0+$FF+1
        put $0+ptr
""")

    def test_included_files_are_converted_too(self):
        program = self.converted('* = $2000\n .include "sub.inc"\n', sub_inc="word .word 5\n")
        self.assertEqual({str(path): text for path, text in program.texts.items()}, {
            "main.asm": '        .org $2000\n        .include "sub.inc"\n', "sub.inc": "word:   .word 5\n"})

    def test_what_is_not_certain_is_refused(self):
        self.refused("* = $2000\n lda #5&lab\nlab stz 5\n .align 4\n lda nix\n inc a\n lda (5)\nphx\n lda <>5\n",
                     "2: lab is unknown", "3: stz is neither", "4: no .align", "5: nix is unknown",
                     "6: a is unknown", "7: does not have this addressing mode", "8: neither", "9: not an operand")

    def test_blocks_are_refused_whole(self):
        self.refused("* = $2000\n.if 1\n nop\n.if 2\n.fi\n.fi\n rts\n", "2: no .if", "3: a block", "4: a block",
                     "5: a block", "6: a block")

    def test_addresses_that_may_be_in_the_zero_page_are_refused(self):
        self.refused("start lda start\n", "1: not certain")
        self.refused("* = $2000\na1\n nop\na2\n lda a2-a1\n", "5: not certain")

    def test_letters_are_refused_unless_they_are_ascii(self):
        program = self.converted('* = $2000\n .text "12"\n .text "A"\n lda #\'A\'\n', plain_texts=False)
        self.assertEqual([message.split(":")[1] for message in program.messages], ["3", "4"])

    def test_assignments_see_only_names_above(self):
        self.refused("* = $2000\nsize = b1-a1\na1 nop\nb1 nop\n", "2: above")

    def test_bad_input_ends_with_messages(self):
        deep = "(" * 5000 + "1" + ")" * 5000
        long = "+".join(["1"] * 5000)
        self.refused(f"* = $2000\n lda #{deep}\n lda #{long}\n lda #\0\n .text \"é\"\n .byte\n",
                     "2: too long", "3: too long", "4: not understood", "5: not ASCII", "6: ends early")
        self.refused("m .macro\n m\n .endm\n m\n", "4: too often")


class FromCa65(Conversion):
    dialect = "ca65"

    def test_definition_decides_the_size_of_an_address(self):
        # What is defined further down takes three bytes there, even in the zero page.
        self.becomes("""
.zeropage
count: .res 2
.code
lda count
lda a:count
lda later
later = $80
lda later
lda later+$80
lda #<count+1
""", """
; segment ZEROPAGE
count   = $80

; segment CODE
        lda $0+count
        lda count
        lda later
later   = $80
        lda $0+later
        lda later+$80
        lda #(<count)+1
""")

    def test_segments_are_put_in_order(self):
        self.becomes(".bss\nb: .res 2\n.rodata\nr: .asciiz \"HI\"\n.code\nlda r\n", """
; segment CODE
        lda r

; segment RODATA
r:      .string "HI"

; segment BSS
b:      .space 2
""")

    def test_local_labels_of_each_kind(self):
        self.becomes("""
.org $2000
main:
@loop: bne @loop
: jmp :-
.proc sub
inner: beq inner
.word inner
.endproc
five = 5
@after: jmp @after
""", """
        .org $2000
main:
.loop:  bne .loop
.l1:    jmp .l1
sub:
.inner: beq .inner
        .word sub.inner
; .endproc
five    = 5
>five_after: jmp five_after
""")

    def test_operators_bind_as_in_ca65(self):
        self.becomes(".org $2000\nlda #1+2<<1\nlda #7&3+1\nl: lda #>l+1\nlda #<(l+1)\n.dbyt l\n", """
        .org $2000
        lda #1+4                ; lda #1+2<<1
        lda #3+1                ; lda #7&3+1
l:      lda #(>l)+1
        lda #<l+1
        .byte >l,<l
""")

    def test_names_of_other_files_and_macros(self):
        program = self.converted("""
.import work
.importzp ptr
.export _run
.macpack generic
.macro inc16 addr
.local skip
inc addr
bne skip
inc addr+1
skip:
.endmacro
_run: add ptr
inc16 work
""")
        self.assertEqual(program.messages, [])
        self.assertIn("""
; macro inc16: written out where it is called
_run:
; add ptr
        clc
        adc $0+ptr
; inc16 work
        inc work
        bne skip_in_copy_2
        inc work+1
skip_in_copy_2:
""", next(iter(program.texts.values())))

    def test_what_is_not_certain_is_refused(self):
        self.refused(".import other\nalias = other\n.align 4\nlda #.sizeof(x)\nbra other\nx = 1\nx = 2\njmp :+\n",
                     "2: another file", "3: no .align", "4: no .sizeof", "5: neither", "7: twice", "8: unknown")

    def test_an_origin_fixes_the_segment(self):
        self.refused(".org $2000\nnop\n.data\n.org $3000\n", "3: another segment", "4: an origin after")

    def test_a_name_of_two_scopes_is_refused(self):
        self.refused("n = 1\n.proc p\nlda #n\nn = 2\n.endproc\n", "3: several scopes")


if __name__ == "__main__":
    Conversion.programs = Path(sys.argv.pop(1)).resolve()
    unittest.main()
