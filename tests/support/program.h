// Whole runs of the program in memory, and the files that they are expected to make. Everything is compared exactly:
// the exit status, both streams, and every file written; what nobody expects is a failure.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/memory_host.h"

namespace kiln::test {

// One run. The source stands in "main.asm" and is assembled to "main.xex" unless the arguments say otherwise.
struct Run {
  std::string source;
  std::vector<std::string> arguments = {"main.asm"};  // behind the program's path
  std::map<std::string, std::string> files = {};      // further files
  // What comes out.
  int status = 0;
  std::string standardError = "";
  std::string standardOutput = "";
  std::map<std::string, std::string> written = {};
};

// Bytes spelled in hexadecimal; anything else is passed over.
std::string bytes(const std::string& hex);
// The other way: "A9 01 ".
std::string hex(std::string_view bytes);

// A flat XEX file: each segment's address and bytes, then the run address.
std::string xex(const std::vector<std::pair<unsigned, std::string>>& segments, unsigned runAddress);

// "kiln-as: " and the text, as a line.
std::string say(const std::string& text);

// Runs and compares. `prepare` may change the host before the run.
void expectRun(const Run& run, void (*prepare)(MemoryHost&) = nullptr);

// The source assembles to these segments and says nothing but the summary line, before which `warnings` are printed.
// The first segment's address is the run address.
void expectCode(const std::string& source, const std::vector<std::pair<unsigned, std::string>>& segments,
                const std::vector<std::string>& warnings = {}, const std::vector<std::string>& options = {});

// The source fails with these errors, behind these warnings.
void expectErrors(const std::string& source, const std::vector<std::string>& errors,
                  const std::vector<std::string>& warnings = {}, const std::vector<std::string>& options = {});

}  // namespace kiln::test
