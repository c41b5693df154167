#include "layout/layout.h"

namespace kiln {
namespace {

constexpr bool AsLayout::*mergedFlags[] = {&AsLayout::hasBanking, &AsLayout::codeWindowSplit, &AsLayout::hasRegc};

constexpr uint32_t AsLayout::*mergedNumbers[] = {
    &AsLayout::codeWindowLo, &AsLayout::codeWindowHi, &AsLayout::codeHalfLo,   &AsLayout::codeHalfHi,
    &AsLayout::dataWindowLo, &AsLayout::dataWindowHi, &AsLayout::codeReg,      &AsLayout::dataReg,
    &AsLayout::regcWindowLo, &AsLayout::regcWindowHi, &AsLayout::regcPageSize, &AsLayout::regcRegLo,
    &AsLayout::regcRegHi,
};

}  // namespace

void mergeLayout(AsLayout& into, const AsLayout& from) {
  for (bool AsLayout::*flag : mergedFlags)
    into.*flag |= from.*flag;
  for (uint32_t AsLayout::*number : mergedNumbers) {
    if (into.*number == 0) into.*number = from.*number;
  }
  if (into.mainRegion.empty()) into.mainRegion = from.mainRegion;
}

}  // namespace kiln
