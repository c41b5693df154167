/* libkiln: the assembler and the checker of kiln-as inside a program of yours. C11 and C++.

   Nothing is printed, no file is touched, and there is no state outside of a kiln_assembler: each thread may have its
   own. All texts are UTF-8 and end with a NUL. What it gives away stays valid until its next kiln_assemble(),
   kiln_check() or kiln_free(). Running out of memory is a status like any other. */
#ifndef KILN_H
#define KILN_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The files of a program, and what the last run has made of them. */
typedef struct kiln_assembler kiln_assembler;

typedef enum {
  KILN_OK = 0,
  KILN_FAILED = 1,        /* there is no image; the messages say why */
  KILN_OUT_OF_MEMORY = 2, /* there are no results */
} kiln_status;

/* NULL when there is no memory. */
kiln_assembler* kiln_new(void);
/* NULL is allowed. */
void kiln_free(kiln_assembler* assembler);

/* Adds a file under the path that the arguments or an ".include" name it by, or replaces it. The bytes are copied. */
kiln_status kiln_add_file(kiln_assembler* assembler, const char* path, const void* bytes, size_t size);
/* Nothing happens when there is no such file. */
void kiln_remove_file(kiln_assembler* assembler, const char* path);

/* Is asked for a path that was not added, and adds it with kiln_add_file(), or does nothing when there is no such file.
   Folders in which kiln-as looks for a toolchain are among the paths. These files are forgotten before the next run. No
   other function may be called with the assembler meanwhile. */
typedef void (*kiln_reader)(kiln_assembler* assembler, const char* path, void* context);
/* Without a reader, or with NULL, there are only the files that were added. */
void kiln_set_reader(kiln_assembler* assembler, kiln_reader reader, void* context);

/* Assembles. The arguments are those of kiln-as, without the program's name: options and the paths of the sources.
   Where kiln-as would write files, there are only the results below. */
kiln_status kiln_assemble(kiln_assembler* assembler, const char* const* arguments, size_t count);
/* The same with the checks of kiln-check, whose -W options are understood too. Its messages replace the assembler's. */
kiln_status kiln_check(kiln_assembler* assembler, const char* const* arguments, size_t count);

/* The program file; NULL and 0 unless the last run gave KILN_OK. */
const uint8_t* kiln_image(const kiln_assembler* assembler, size_t* size);

typedef enum {
  KILN_NOTE = 0, /* belongs to the message before */
  KILN_WARNING = 1,
  KILN_ERROR = 2,
} kiln_severity;

typedef struct {
  kiln_severity severity;
  const char* text;
  const char* check;           /* the name of the check; NULL for a message of the assembler, and for notes */
  const char* file;            /* NULL when there is no place */
  uint32_t line;               /* from 1; 0 when there is no place */
  uint32_t column, end_column; /* in bytes, from 1; the end is one past the last */
} kiln_message;

size_t kiln_message_count(const kiln_assembler* assembler);
/* NULL from the count on. */
const kiln_message* kiln_message_at(const kiln_assembler* assembler, size_t index);

typedef struct {
  const char* name; /* of a local label with its scope: "main.loop" */
  uint16_t address;
  int32_t bank;     /* -1: in main memory */
  const char* file; /* NULL when there is no place */
  uint32_t line;    /* from 1; 0 when there is no place */
} kiln_label;

/* In the order of the source. There are none unless the program assembles. */
size_t kiln_label_count(const kiln_assembler* assembler);
/* NULL from the count on. */
const kiln_label* kiln_label_at(const kiln_assembler* assembler, size_t index);

/* Such as "0.61". */
const char* kiln_version(void);

#ifdef __cplusplus
}
#endif

#endif
