# nlohmann-json for a cross compiler: -Dnlohmann_json_DIR=cmake/cross. It is headers alone, the same for all systems; but
# in the folder where Debian has them, the compiler would find the headers of this system, too.
set(jsonFolder ${CMAKE_BINARY_DIR}/json)
file(MAKE_DIRECTORY ${jsonFolder})
file(CREATE_LINK /usr/include/nlohmann ${jsonFolder}/nlohmann SYMBOLIC)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${jsonFolder})
