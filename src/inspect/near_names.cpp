#include "inspect/near_names.h"

#include <algorithm>
#include <array>

#include "base/format.h"
#include "base/text.h"

namespace kiln {
namespace {

constexpr size_t mostNames = 3;
constexpr size_t longestWord = 40;

// One letter of short words may differ, two of longer ones.
size_t mostChanges(std::string_view word) { return word.size() < 6 ? 1 : 2; }

// The letters to insert, remove, change or swap with their neighbour to make one name from the other, letter case
// aside; some number above `most` when they are more than that. Both have at most `longestWord` characters.
size_t changesBetween(std::string_view a, std::string_view b, size_t most) {
  std::array<std::array<size_t, longestWord + 1>, longestWord + 1> changes;
  for (size_t j = 0; j <= b.size(); ++j)
    changes[0][j] = j;
  size_t leastAbove = 0;
  for (size_t i = 1; i <= a.size(); ++i) {
    changes[i][0] = i;
    size_t leastInRow = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const bool areEqual = toLower(a[i - 1]) == toLower(b[j - 1]);
      size_t least =
          std::min({changes[i - 1][j] + 1, changes[i][j - 1] + 1, changes[i - 1][j - 1] + (areEqual ? 0 : 1)});
      const bool areSwapped =
          i > 1 && j > 1 && toLower(a[i - 1]) == toLower(b[j - 2]) && toLower(a[i - 2]) == toLower(b[j - 1]);
      if (areSwapped) least = std::min(least, changes[i - 2][j - 2] + 1);
      changes[i][j] = least;
      leastInRow = std::min(leastInRow, least);
    }
    // Each row builds on the two above it.
    if (std::min(leastInRow, leastAbove) > most) return leastInRow;
    leastAbove = leastInRow;
  }
  return changes[a.size()][b.size()];
}

}  // namespace

void NearNames::begin(std::string_view word) {
  word_ = word;
  distance_ = mostChanges(word);
  names_.clear();
}

void NearNames::offer(std::string_view name) {
  const size_t shorter = std::min(name.size(), word_.size());
  const size_t longer = std::max(name.size(), word_.size());
  if (shorter == 0 || longer > longestWord || longer - shorter > distance_ || comparisonsLeft_ == 0) return;
  --comparisonsLeft_;
  const size_t distance = changesBetween(word_, name, distance_);
  if (distance > distance_ || distance >= longer) return;
  if (distance < distance_) names_.clear();
  distance_ = distance;
  const bool isKnown = std::find(names_.begin(), names_.end(), name) != names_.end();
  if (names_.size() < mostNames && !isKnown) names_.push_back(name);
}

std::string NearNames::hint() const {
  std::string hint;
  for (size_t i = 0; i < names_.size(); ++i) {
    const std::string_view before = i == 0 ? "did you mean " : i + 1 == names_.size() ? " or " : ", ";
    hint += concat({before, "'", names_[i], "'"});
  }
  return hint.empty() ? hint : hint + "?";
}

bool isNear(std::string_view word, std::string_view name) {
  NearNames near;
  near.begin(word);
  near.offer(name);
  return !near.only().empty();
}

std::string_view NearNames::only() const { return names_.size() == 1 ? names_.front() : std::string_view(); }

}  // namespace kiln
