// Draws the screen that a program shows:
//   screenshot PROGRAM.xex PICTURE.png [DOES:FRAMES...]           writes the picture
//   screenshot --check PROGRAM.xex PICTURE.png [DOES:FRAMES...]   fails when the file shows another one
// DOES says what the player does for so many frames: wait, fire, up, down, left or right. Without any it is wait:60.
// A program whose name ends in .prg is one for a Commodore 64, and runs to its end.
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>

#include "commodore.h"
#include "machine/atari.h"
#include "machine/palette.h"
#include "png.h"

namespace kiln::screenshot {
namespace {

constexpr size_t zoom = 2;

struct Move {
  std::string_view name;
  uint8_t stick;
  bool trigger;
};
constexpr Move moves[] = {{"wait", 15, false}, {"fire", 15, true},  {"up", 14, false},
                          {"down", 13, false}, {"left", 11, false}, {"right", 7, false}};

int fail(const std::string& text) {
  std::cerr << "screenshot: " << text << '\n';
  return 1;
}

// False with `error` set when there is no such move or the program stops.
bool play(Atari& atari, const std::string& step, std::string& error) {
  const size_t colon = std::min(step.find(':'), step.size());
  for (const Move& move : moves) {
    if (move.name != step.substr(0, colon)) continue;
    atari.stick = move.stick;
    atari.trigger = move.trigger;
    for (int frames = std::atoi(step.c_str() + colon + (colon < step.size())); frames > 0; --frames) {
      if (!atari.runFrame()) return error = atari.machine.error, false;
    }
    return true;
  }
  error = "what is '" + step + "'?";
  return false;
}

Picture pictureOf(const Screen& screen) {
  static const auto palette = makePalette();
  Picture picture{Screen::width * zoom, Screen::height * zoom, {}};
  for (size_t y = 0; y < picture.height; ++y) {
    for (size_t x = 0; x < picture.width; ++x)
      picture.points.push_back(palette[screen.colours[y / zoom * Screen::width + x / zoom]]);
  }
  return picture;
}

// An empty picture, with `error` set, when the program stops.
Picture drawAtari(std::string_view file, const std::vector<std::string>& steps, std::string& error) {
  Atari atari;
  if (!atari.load(file)) return error = atari.machine.error, Picture{};
  for (const std::string& step : steps) {
    if (!play(atari, step, error)) return {};
  }
  return pictureOf(atari.screen);
}

int run(bool isCheck, const std::string& program, const std::string& path, const std::vector<std::string>& steps) {
  std::ostringstream file;
  std::string error;
  if (!(file << std::ifstream(program, std::ios::binary).rdbuf())) return fail("cannot read '" + program + "'");
  const Picture picture =
      program.ends_with(".prg") ? drawCommodore(file.str(), error) : drawAtari(file.str(), steps, error);
  if (!error.empty()) return fail(program + ": " + error);
  if (isCheck)
    return readPng(path) == picture ? 0 : fail(path + " is not what the program shows; tools/screenshot/run");
  return writePng(path, picture) ? 0 : fail("cannot write '" + path + "'");
}

}  // namespace
}  // namespace kiln::screenshot

int main(int argumentCount, char** arguments) {
  std::vector<std::string> words(arguments + 1, arguments + argumentCount);
  const bool isCheck = !words.empty() && words[0] == "--check";
  if (isCheck) words.erase(words.begin());
  if (words.size() < 2) {
    std::cerr << "usage: screenshot [--check] PROGRAM.xex PICTURE.png [DOES:FRAMES...]\n";
    return 1;
  }
  const std::string program = words[0], picture = words[1];
  words.erase(words.begin(), words.begin() + 2);
  if (words.empty()) words = {"wait:60"};
  return kiln::screenshot::run(isCheck, program, picture, words);
}
