// ".kiln": the command lines of the programs in a folder. Each line has the arguments of one run of kiln-as, without
// the program's name; paths are relative to the folder of the file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "driver/options.h"
#include "host/file_reader.h"

namespace kiln {

inline constexpr std::string_view projectFileName = ".kiln";

struct ProjectLine {
  uint32_t number;  // from 1
  std::vector<std::string> arguments;
};

// The lines that are neither empty nor begin with "#". Blanks separate arguments; double quotes keep them.
std::vector<ProjectLine> readProjectLines(std::string_view text);

// The path of the ".kiln" in the folder, or in the nearest one above; absent when there is none. An empty folder is the
// current one.
std::optional<std::string> findProject(const FileReader& files, const std::string& folder);

// Adds what a line says to options that come before it, and keep their paths. The result is empty, or says what is
// wrong with the line.
std::string addProjectLine(const ProjectLine& line, const std::string& projectPath, Options& options);

// Makes all relative paths in the options relative to the folder of the project file.
void moveToProject(Options& options, const std::string& projectPath);

}  // namespace kiln
