"""Assembles a program with libkiln: python3 hello.py"""
import ctypes

kiln = ctypes.CDLL("libkiln.so.0")
kiln.kiln_new.restype = kiln.kiln_image.restype = ctypes.c_void_p
assembler = ctypes.c_void_p(kiln.kiln_new())
source = b"        .org $2000\nstart:  JMP start\n"
size = ctypes.c_size_t(len(source))
kiln.kiln_add_file(assembler, b"main.asm", source, size)
status = kiln.kiln_assemble(assembler, (ctypes.c_char_p * 1)(b"main.asm"), ctypes.c_size_t(1))
image = kiln.kiln_image(assembler, ctypes.byref(size))
print(status, ctypes.string_at(image, size.value).hex(" ") if status == 0 else "")
kiln.kiln_free(assembler)
