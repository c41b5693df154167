// The library as a program in C uses it.
#include "library/kiln.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "support/program.h"

namespace kiln::test {
namespace {

using Files = std::map<std::string, std::string>;

struct Free {
  void operator()(kiln_assembler* assembler) const { kiln_free(assembler); }
};
using Handle = std::unique_ptr<kiln_assembler, Free>;

Handle withFiles(const Files& files) {
  Handle handle(kiln_new());
  for (const auto& [path, text] : files)
    EXPECT_EQ(kiln_add_file(handle.get(), path.c_str(), text.data(), text.size()), KILN_OK);
  return handle;
}

std::vector<const char*> pointers(const std::vector<std::string>& arguments) {
  std::vector<const char*> pointers;
  for (const std::string& argument : arguments)
    pointers.push_back(argument.c_str());
  return pointers;
}

kiln_status assemble(const Handle& handle, const std::string& line) {
  const std::vector<std::string> arguments = words(line);
  return kiln_assemble(handle.get(), pointers(arguments).data(), arguments.size());
}

kiln_status check(const Handle& handle, const std::string& line) {
  const std::vector<std::string> arguments = words(line);
  return kiln_check(handle.get(), pointers(arguments).data(), arguments.size());
}

std::string image(const Handle& handle) {
  size_t size = 1;
  const uint8_t* const bytes = kiln_image(handle.get(), &size);
  EXPECT_EQ(bytes == nullptr, size == 0);
  return {reinterpret_cast<const char*>(bytes), size};
}

// "file:line:column-end: severity: text [check]" for each message; places and checks only where there are any.
std::vector<std::string> messages(const Handle& handle) {
  std::vector<std::string> lines;
  for (size_t i = 0; const kiln_message* const message = kiln_message_at(handle.get(), i); ++i) {
    const auto number = [](uint32_t value) { return std::to_string(value); };
    std::string line;
    if (message->file != nullptr) {
      line = std::string(message->file) + ":" + number(message->line) + ":" + number(message->column) + "-" +
             number(message->end_column) + ": ";
    }
    line += std::vector<std::string>{"note: ", "warning: ", "error: "}[message->severity] + message->text;
    if (message->check != nullptr) line += std::string(" [") + message->check + "]";
    lines.push_back(line);
  }
  EXPECT_EQ(lines.size(), kiln_message_count(handle.get()));
  return lines;
}

using Lines = std::vector<std::string>;

TEST(Library, GivesTheImageAndTheLabels) {
  const Handle handle = withFiles({{"main.asm", "        .org $2000\nmain:   LDA #value\n.loop:  JMP .loop\n"}});
  EXPECT_EQ(assemble(handle, "-D value=7 main.asm"), KILN_OK);
  EXPECT_EQ(image(handle), xex({{0x2000, "A9 07 4C 02 20"}}, 0x2000));
  EXPECT_EQ(messages(handle), Lines{});
  ASSERT_EQ(kiln_label_count(handle.get()), 2U);
  const kiln_label& label = *kiln_label_at(handle.get(), 1);
  EXPECT_STREQ(label.name, "main.loop");
  EXPECT_EQ(label.address, 0x2002);
  EXPECT_EQ(label.bank, -1);
  EXPECT_STREQ(label.file, "main.asm");
  EXPECT_EQ(label.line, 3U);
  EXPECT_EQ(kiln_label_at(handle.get(), 2), nullptr);
}

TEST(Library, GivesMessagesWithTheirPlaces) {
  const Handle handle = withFiles({{"main.asm", "        .org $2000\n        .include \"part.asm\"\n        RTS\n"},
                                   {"part.asm", "; a part\nstart:  LDA absent\n        LDZ #1\n"}});
  EXPECT_EQ(assemble(handle, "main.asm"), KILN_OK);
  EXPECT_EQ(messages(handle),
            (Lines{"warning: undefined symbol 'absent', using 0",
                   "part.asm:2:1-19: warning: LDA absent resolves to $0000 — probable undefined symbol (compiler "
                   "internal error?)"}));
  EXPECT_EQ(check(handle, "main.asm"), KILN_OK);
  EXPECT_EQ(messages(handle),
            (Lines{"part.asm:2:13-19: warning: 'absent' is not defined: it counts as 0 [undefined]",
                   "part.asm:3:9-12: warning: 'LDZ' is no instruction, directive or macro: this line makes nothing "
                   "[vanished]",
                   "note: did you mean 'LDX', 'LDY' or 'LDA'?"}));
  EXPECT_EQ(check(handle, "-Wno-vanished -Wno-undefined main.asm"), KILN_OK);
  EXPECT_EQ(messages(handle), Lines{});
}

TEST(Library, FailsAsTheAssemblerDoes) {
  const Handle handle = withFiles({{"twice.asm", " .org $2000\na: NOP\na: NOP\n"}, {"empty.asm", ""}});
  const std::pair<std::string, Lines> rows[] = {
      {"twice.asm", {"twice.asm:3:1-7: error: duplicate label 'a'"}},
      {"-o a.prg empty.asm", {"error: cannot write 'a.prg': the program has no bytes"}},
      {"absent.asm",
       {"error: cannot read 'absent.asm': The file “absent.asm” couldn’t be opened because there is no such file."}},
      {"-x twice.asm", {"error: unknown option '-x'"}},
      {"-h", {"error: this option makes no program"}},
  };
  for (const auto& [line, expected] : rows) {
    EXPECT_EQ(assemble(handle, line), KILN_FAILED) << line;
    EXPECT_EQ(messages(handle), expected);
    EXPECT_EQ(image(handle), "");
  }
  EXPECT_EQ(kiln_assemble(handle.get(), nullptr, 0), KILN_FAILED);
  EXPECT_EQ(messages(handle), Lines{"error: no input files"});
  EXPECT_EQ(check(handle, "--json twice.asm"), KILN_FAILED);
  EXPECT_EQ(messages(handle), Lines{"error: no files are written here"});
}

TEST(Library, SaysThatMemoryIsMissing) {
  const Handle handle = withFiles({{"main.asm", " .org $2000\n NOP\n"}});
  EXPECT_EQ(kiln_add_file(handle.get(), "large.asm", "", SIZE_MAX), KILN_OUT_OF_MEMORY);
  EXPECT_EQ(assemble(handle, "main.asm"), KILN_OK);
}

// Keeps what it is asked for, and knows one file.
void readPart(kiln_assembler* assembler, const char* path, void* context) {
  static_cast<Lines*>(context)->emplace_back(path);
  const std::string text = " NOP\n";
  if (std::string(path) == "part.asm") kiln_add_file(assembler, path, text.data(), text.size());
}

TEST(Library, AsksTheReaderForFilesThatAreNotThere) {
  const Handle handle = withFiles({{"main.asm", " .org $2000\n .include \"part.asm\"\n"}});
  EXPECT_EQ(assemble(handle, "main.asm"), KILN_FAILED);
  Lines asked;
  kiln_set_reader(handle.get(), readPart, &asked);
  for (int round = 0; round < 2; ++round) {
    asked.clear();
    EXPECT_EQ(assemble(handle, "main.asm"), KILN_OK);
    EXPECT_EQ(std::count(asked.begin(), asked.end(), "part.asm"), 1);
    EXPECT_EQ(std::count(asked.begin(), asked.end(), "main.asm"), 0);
  }
  kiln_set_reader(handle.get(), nullptr, nullptr);
  EXPECT_EQ(assemble(handle, "main.asm"), KILN_FAILED);
  kiln_remove_file(handle.get(), "main.asm");
  EXPECT_EQ(assemble(handle, "main.asm"), KILN_FAILED);
}

// A thousand programs of different lengths, by four threads.
TEST(Library, AssemblesOftenAndAtTheSameTime) {
  const auto work = [](int seed) {
    const Handle handle(kiln_new());
    for (int i = 0; i < 250; ++i) {
      const std::string source = " .org $2000\nmain: LDA absent\n .space " + std::to_string(seed * i + 1) + "\n";
      kiln_add_file(handle.get(), "main.asm", source.data(), source.size());
      ASSERT_EQ(check(handle, "main.asm"), KILN_OK);
      // $FFFF, two addresses, the instruction, the space, and the run address.
      ASSERT_EQ(image(handle).size(), 2U + 4 + 3 + static_cast<size_t>(seed * i + 1) + 6);
      ASSERT_EQ(kiln_label_count(handle.get()), 1U);
    }
  };
  std::vector<std::thread> threads;
  for (int seed = 1; seed <= 4; ++seed)
    threads.emplace_back(work, seed);
  for (std::thread& thread : threads)
    thread.join();
}

}  // namespace
}  // namespace kiln::test
