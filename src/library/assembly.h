// One run of the library, and what comes out of it.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "inspect/findings.h"
#include "inspect/program.h"
#include "library/kiln.h"
#include "library/memory_files.h"

namespace kiln {

// The results as the library gives them away; all texts are kept here.
class Assembly {
 public:
  // Fills the results. False when there is no image.
  bool assemble(MemoryFiles& files, std::vector<std::string> arguments);
  bool check(MemoryFiles& files, std::vector<std::string> arguments);

  const std::string& image() const { return image_; }
  const std::vector<kiln_message>& messages() const { return messages_; }
  const std::vector<kiln_label>& labels() const { return labels_; }

 private:
  bool complain(std::string_view text);
  std::unique_ptr<Program> open(const MemoryFiles& files, const Options& options);
  bool finish(const Program& program, const std::vector<Finding>& findings);
  void addMessage(kiln_severity severity, std::string_view text, const Place& place, const char* check);
  void addFinding(const Finding& finding);
  void addLabels(const Program& program);
  const char* keep(std::string_view text) { return texts_.emplace_back(text).c_str(); }
  const char* fileOf(const Place& place);

  std::string image_;
  std::vector<kiln_message> messages_;
  std::vector<kiln_label> labels_;
  std::deque<std::string> texts_;
  std::map<const SourceNotes::File*, const char*> paths_;  // of the files that places name
};

}  // namespace kiln
