// "Did you mean": names that are spelled nearly like a word.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

// Letter case does not count. The work is limited: a source with thousands of unknown names among a million known ones
// gets no suggestions for the later ones.
class NearNames {
 public:
  // Begins a search for a word.
  void begin(std::string_view word);
  // Compares the word with a name, which has to stay until the end of the search.
  void offer(std::string_view name);
  // "did you mean 'LDX', 'LDY' or 'LDA'?": the nearest names, three at most, in the order offered; empty without one.
  std::string hint() const;
  // These names.
  const std::vector<std::string_view>& names() const { return names_; }
  // The nearest name when no other is as near; empty otherwise.
  std::string_view only() const;

 private:
  std::string_view word_;
  size_t distance_ = 0;  // of the names found; farther ones are not taken
  std::vector<std::string_view> names_;
  size_t comparisonsLeft_ = 2'000'000;
};

// True when the word is spelled nearly like the name.
bool isNear(std::string_view word, std::string_view name);

}  // namespace kiln
