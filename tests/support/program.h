// Whole runs of the program in memory, and the files that they are expected to make. Everything is compared exactly:
// the exit status, both streams, and every file written; anything unexpected is a failure.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/diagnostics.h"
#include "support/memory_host.h"

namespace kiln::test {

// One run. The source is "main.asm" and is assembled to "main.xex" unless the command line says otherwise.
struct Run {
  std::string source;
  std::string line = "main.asm";  // after the program's path
  // What comes out.
  int status = 0;
  std::string standardError = "";
  std::map<std::string, std::string> written = {};
};

// Bytes spelled in hexadecimal; anything else is passed over.
std::string bytes(const std::string& hex);
// The other way: "A9 01 ".
std::string hex(std::string_view bytes);
// So many zero bytes in hexadecimal.
std::string zeros(size_t count);

// The segments of a flat file: their addresses, and their bytes in hexadecimal.
using Contents = std::vector<std::pair<unsigned, std::string>>;

// A flat XEX file of these segments, then the run address.
std::string xex(const Contents& segments, unsigned runAddress);

// " name $1-$2"; empty when both ends are 0.
std::string range(const std::string& name, uint32_t low, uint32_t high);

// "kiln-as: " and the text, as a line.
std::string say(const std::string& text);

// "undefined symbol 'name', using 0" for each of the names.
std::vector<std::string> undefined(const std::vector<std::string>& names);

// All messages of a list.
std::vector<std::string> texts(const MessageList& messages);

// The arguments of a command line: between two spaces is an empty one.
std::vector<std::string> words(std::string_view line);

// Runs a command line that lacks the program's path, and gives the exit status.
int runLine(MemoryHost& host, const std::string& line);

// Runs and compares.
void expectRun(const Run& run);

// The source assembles to these segments and says nothing but the summary line, before which `warnings` are printed.
// The first segment's address is the run address.
void expectCode(const std::string& source, const Contents& segments, const std::vector<std::string>& warnings = {},
                const std::string& options = "");

// The source fails with these errors, after these warnings.
void expectErrors(const std::string& source, const std::vector<std::string>& errors,
                  const std::vector<std::string>& warnings = {}, const std::string& options = "");

}  // namespace kiln::test
