/* Assembles a program with libkiln: cc hello.c $(pkg-config --cflags --libs kiln) -o hello */
#include <kiln.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  const char *source = "        .org $2000\nstart:  LDA position\n        JMP start\n";
  const char *arguments[] = {"main.asm"};
  kiln_assembler *assembler = kiln_new();
  size_t size = 0;
  if (kiln_add_file(assembler, "main.asm", source, strlen(source)) == KILN_OK &&
      kiln_check(assembler, arguments, 1) == KILN_OK)
    kiln_image(assembler, &size);
  for (size_t i = 0; i < kiln_message_count(assembler); ++i)
    printf("line %u: %s\n", (unsigned)kiln_message_at(assembler, i)->line, kiln_message_at(assembler, i)->text);
  printf("%zu bytes\n", size);
  kiln_free(assembler);
}
