// The findings of all programs that are open, sent to the editor when they change.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "lsp/session.h"

namespace kiln {

// A finding as the protocol has it; one without a place is at the beginning of the document.
Json diagnosticOf(const Analysis& analysis, const Finding& finding, Locations& locations);

class PublishedFindings {
 public:
  // The "publishDiagnostics" notifications that bring the editor up to date: for the files whose findings have changed,
  // and an empty list for those that have none any more.
  std::vector<Json> update(Session& session);

 private:
  std::map<std::string, std::string> sent_;  // lists that are not empty, by URI, as text
};

}  // namespace kiln
