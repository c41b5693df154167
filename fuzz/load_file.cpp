#include "load_file.h"

namespace kiln::fuzz {
namespace {

uint32_t wordAt(std::string_view bytes, size_t at) {
  return static_cast<uint8_t>(bytes[at]) | static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + 1])) << 8;
}

}  // namespace

std::optional<std::vector<LoadRecord>> parseLoadFile(std::string_view file) {
  if (file.substr(0, 2) != "\xFF\xFF") return std::nullopt;
  file.remove_prefix(2);
  std::vector<LoadRecord> records;
  while (!file.empty()) {
    if (file.size() < 4) return std::nullopt;
    const uint32_t first = wordAt(file, 0);
    const size_t size = ((wordAt(file, 2) - first) & 0xFFFF) + 1;
    file.remove_prefix(4);
    if (file.size() < size) return std::nullopt;
    records.push_back({first, file.substr(0, size)});
    file.remove_prefix(size);
  }
  return records;
}

bool isRunAddress(const LoadRecord& record) { return record.address == 0x02E0 && record.bytes.size() == 2; }

}  // namespace kiln::fuzz
