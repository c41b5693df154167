#include "library/kiln.h"

#include <cstdint>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/version.h"
#include "library/assembly.h"

struct kiln_assembler {
  kiln::MemoryFiles files;
  std::optional<kiln::Assembly> last;
};

namespace {

using Run = bool (kiln::Assembly::*)(kiln::MemoryFiles&, std::vector<std::string>);

// No exception leaves the library: all of them mean that there is not enough memory.
template <typename Step>
kiln_status guarded(Step step) {
  try {
    return step() ? KILN_OK : KILN_FAILED;
  } catch (const std::bad_alloc&) {
    return KILN_OUT_OF_MEMORY;
  } catch (const std::length_error&) {
    return KILN_OUT_OF_MEMORY;
  }
}

kiln_status run(kiln_assembler& assembler, const char* const* arguments, size_t count, Run step) {
  const kiln_status status = guarded([&] {
    assembler.last.emplace();
    assembler.files.begin();
    return ((*assembler.last).*step)(assembler.files, {arguments, arguments + count});
  });
  if (status == KILN_OUT_OF_MEMORY) assembler.last.reset();
  return status;
}

template <typename T>
const T* at(const std::vector<T>& list, size_t index) {
  return index < list.size() ? &list[index] : nullptr;
}

}  // namespace

kiln_assembler* kiln_new(void) { return new (std::nothrow) kiln_assembler; }

void kiln_free(kiln_assembler* assembler) { delete assembler; }

kiln_status kiln_add_file(kiln_assembler* assembler, const char* path, const void* bytes, size_t size) {
  if (size > PTRDIFF_MAX) return KILN_OUT_OF_MEMORY;  // no text of this size is in memory
  return guarded([&] {
    assembler->files.add(path, std::string(static_cast<const char*>(bytes), size));
    return true;
  });
}

void kiln_remove_file(kiln_assembler* assembler, const char* path) {
  (void)guarded([&] {
    assembler->files.remove(path);
    return true;
  });
}

void kiln_set_reader(kiln_assembler* assembler, kiln_reader reader, void* context) {
  assembler->files.reader = nullptr;
  if (reader == nullptr) return;
  assembler->files.reader = [=](const std::string& path) { reader(assembler, path.c_str(), context); };
}

kiln_status kiln_assemble(kiln_assembler* assembler, const char* const* arguments, size_t count) {
  return run(*assembler, arguments, count, &kiln::Assembly::assemble);
}

kiln_status kiln_check(kiln_assembler* assembler, const char* const* arguments, size_t count) {
  return run(*assembler, arguments, count, &kiln::Assembly::check);
}

const uint8_t* kiln_image(const kiln_assembler* assembler, size_t* size) {
  const bool isThere = assembler->last.has_value() && !assembler->last->image().empty();
  *size = isThere ? assembler->last->image().size() : 0;
  return isThere ? reinterpret_cast<const uint8_t*>(assembler->last->image().data()) : nullptr;
}

size_t kiln_message_count(const kiln_assembler* assembler) {
  return assembler->last.has_value() ? assembler->last->messages().size() : 0;
}

const kiln_message* kiln_message_at(const kiln_assembler* assembler, size_t index) {
  return assembler->last.has_value() ? at(assembler->last->messages(), index) : nullptr;
}

size_t kiln_label_count(const kiln_assembler* assembler) {
  return assembler->last.has_value() ? assembler->last->labels().size() : 0;
}

const kiln_label* kiln_label_at(const kiln_assembler* assembler, size_t index) {
  return assembler->last.has_value() ? at(assembler->last->labels(), index) : nullptr;
}

const char* kiln_version(void) {
  static_assert(*(kiln::version.data() + kiln::version.size()) == '\0');
  return kiln::version.data();
}
