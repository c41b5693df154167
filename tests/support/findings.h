// Runs of kiln-check in memory, and what it is expected to find.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace kiln::test {

// A program to be checked: "main.asm", and the files and options that it needs.
struct CheckedSource {
  std::string source;
  std::string options = "";                       // as on the command line, before the input
  std::map<std::string, std::string> files = {};  // by name
};

// The findings in the order printed: "LINE:COLUMN CHECK" in main.asm, "FILE:LINE:COLUMN CHECK" elsewhere, and the name
// of the check alone for one without a place.
std::vector<std::string> findingsIn(const CheckedSource& checked);

// The texts of the same findings, each followed by those of its notes.
std::vector<std::string> findingTextsIn(const CheckedSource& checked);

// The source after all fixes that the findings have.
std::string fixedSource(const CheckedSource& checked);

// Compares with findingsIn(). Without `expected`, nothing may be found.
void expectFindings(const CheckedSource& checked, const std::vector<std::string>& expected = {});

}  // namespace kiln::test
