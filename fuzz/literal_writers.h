// The rules of the output files, step by step: slow, and nothing shared with the product but its types.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "output/bank_values.h"
#include "output/segment.h"

namespace kiln::fuzz {

struct LiteralFile {
  std::optional<std::string> image;   // absent: the writer fails
  std::vector<std::string> messages;  // how each line on standard error begins
};

LiteralFile literalXex(const std::vector<AsSegment>& segments, const ShadowPlan& plan, uint32_t runAddress);
LiteralFile literalBanked(const std::vector<AsSegment>& segments, const ShadowPlan& plan,
                          const BankedSettings& settings, uint32_t runAddress);
std::optional<std::string> literalPrg(const std::vector<AsSegment>& segments);

}  // namespace kiln::fuzz
