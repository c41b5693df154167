// The labels of a program, for debuggers and other tools.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/placements.h"
#include "inspect/program.h"

namespace kiln {

struct Label {
  std::string_view name;  // with the scope of a local one
  uint32_t address;       // 0..65535
  std::optional<uint16_t> bank;
  Place place;  // line 0: none
};

// In the order of the source. Of several labels of one name only the last, whose address all references have.
std::vector<Label> listLabels(const Program& program, const Placements& placements);

// `format` is "vice", "mads" or "json".
std::string renderLabels(const std::vector<Label>& labels, std::string_view format);

}  // namespace kiln
