#include "inspect/recording_host.h"

namespace kiln {

std::optional<std::string> RecordingHost::readFile(const std::string& path) const {
  std::optional<std::string> bytes = host_.readFile(path);
  if (bytes.has_value() && known_.insert(path).second) paths_.push_back(path);
  return bytes;
}

}  // namespace kiln
