// JSON as the protocol uses it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace kiln {

using Json = nlohmann::json;

// In one line. Bytes that are not valid UTF-8 become replacement characters.
inline std::string dumpJson(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

// A member of an object, at any depth ("textDocument.uri" is {"textDocument", "uri"}); null when it is not there.
inline const Json& memberOf(const Json& json, std::initializer_list<std::string_view> path) {
  static const Json nothing;
  const Json* at = &json;
  for (std::string_view name : path) {
    if (!at->is_object()) return nothing;
    const auto member = at->find(name);
    if (member == at->end()) return nothing;
    at = &*member;
  }
  return *at;
}

inline std::string textOf(const Json& json) { return json.is_string() ? json.get<std::string>() : ""; }

inline bool isTrue(const Json& json) { return json.is_boolean() && json.get<bool>(); }

// A number from 0 up; `otherwise` for everything else.
inline uint32_t numberOf(const Json& json, uint32_t otherwise = 0) {
  if (!json.is_number_integer()) return otherwise;
  const auto value = json.get<int64_t>();
  return value < 0 || value > UINT32_MAX ? otherwise : static_cast<uint32_t>(value);
}

}  // namespace kiln
