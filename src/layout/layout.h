// The contents of a layout file (".lnk"): the target's memory and banking. A number that is 0 is not set.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kiln {

struct AsLayout {
  std::string error;  // the first error, without the program's name; empty when there is none

  bool hasBanking = false;  // "[banking]" has a key, perhaps an unknown one
  uint32_t codeWindowLo = 0;
  uint32_t codeWindowHi = 0;
  std::vector<uint32_t> mainRegion;  // low, high, low, high, ... in the order of the file
  bool codeWindowSplit = false;      // the window has a code half and a data half
  uint32_t codeHalfLo = 0;
  uint32_t codeHalfHi = 0;
  uint32_t dataWindowLo = 0;
  uint32_t dataWindowHi = 0;
  uint32_t codeReg = 0;
  uint32_t dataReg = 0;
  bool hasRegc = false;
  uint32_t regcWindowLo = 0;
  uint32_t regcWindowHi = 0;
  uint32_t regcPageSize = 0;
  uint32_t regcRegLo = 0;
  uint32_t regcRegHi = 0;

  bool cloakedPending = false;  // a "[cloaked]" entry is open; the next three are its
  int32_t cloakedBankLo = -1;   // -1: no bank
  int32_t cloakedBankHi = -1;
  std::string cloakedIdTemplate;
  std::vector<std::string> cloakedIds;  // of all closed entries
};

// Sets each field of `into` from `hasBanking` to `regcRegHi` that is not set yet. The error and the cloaked entries of
// `from` are not merged.
void mergeLayout(AsLayout& into, const AsLayout& from);

}  // namespace kiln
