#include "inspect/svg_writer.h"

#include <algorithm>
#include <cmath>

#include "base/format.h"
#include "base/utf8.h"

namespace kiln {
namespace {

constexpr std::string_view font = "DejaVu Sans Mono, Menlo, Consolas, monospace";
constexpr double characterWidth = 0.602;  // of a size of 1

// One decimal at most.
std::string pixels(double length) {
  const auto tenths = static_cast<int64_t>(std::llround(length * 10));
  const int64_t rest = std::abs(tenths % 10);
  return rest == 0 ? decimal(tenths / 10) : concat({decimal(tenths / 10), ".", decimal(rest)});
}

std::string escaped(std::string_view text) {
  const bool isValid = isStrictUtf8(text);
  std::string result;
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '&') {
      result += "&amp;";
    } else if (c == '<') {
      result += "&lt;";
    } else if (c == '>') {
      result += "&gt;";
    } else {
      result.push_back(byte < 0x20 || byte == 0x7F || (byte > 0x7F && !isValid) ? '?' : c);
    }
  }
  return result;
}

std::string_view anchorAttribute(Anchor anchor) { return anchor == Anchor::End ? " text-anchor=\"end\"" : ""; }

}  // namespace

double SvgWriter::textWidth(std::string_view text, double size) {
  return static_cast<double>(utf16Length(text)) * size * characterWidth;
}

std::string SvgWriter::cut(std::string_view text, double size, double width) {
  if (textWidth(text, size) <= width) return std::string(text);
  constexpr std::string_view dots = "...";
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  auto end = static_cast<size_t>((width - textWidth(dots, size)) / (size * characterWidth));
  end = std::min(end, text.size() - 1);
  while (end > 0 && isContinuation(text[end]))
    --end;
  return concat({text.substr(0, end), dots});
}

void SvgWriter::rect(const Box& box, std::string_view style) {
  body_ += concat({"<rect x=\"", pixels(box.x), "\" y=\"", pixels(box.y), "\" width=\"", pixels(box.width),
                   "\" height=\"", pixels(box.height), "\" ", style, "/>\n"});
}

void SvgWriter::verticalLines(const Box& box, uint32_t count, std::string_view style) {
  if (count == 0) return;
  const std::string height = pixels(box.height);
  body_ += concat({"<path d=\"M", pixels(box.x), " ", pixels(box.y), "v", height});
  for (uint32_t i = 1; i < count; ++i)
    body_ += concat({"m", pixels(box.width), "-", height, "v", height});
  body_ += concat({"\" ", style, "/>\n"});
}

void SvgWriter::text(double x, double y, double size, std::string_view text, Anchor anchor, std::string_view style) {
  body_ += concat({"<text x=\"", pixels(x), "\" y=\"", pixels(y), "\" font-size=\"", pixels(size), "\"",
                   anchorAttribute(anchor), style.empty() ? "" : " ", style, ">", escaped(text), "</text>\n"});
}

std::string SvgWriter::finish(double width, double height, std::string_view title) const {
  const std::string size = concat({pixels(width), " ", pixels(height)});
  return concat({R"(<?xml version="1.0" encoding="UTF-8"?>)", "\n",
                 R"(<svg xmlns="http://www.w3.org/2000/svg" version="1.1" width=")", pixels(width), R"(" height=")",
                 pixels(height), R"(" viewBox="0 0 )", size, R"(" font-family=")", font, "\">\n<title>", escaped(title),
                 "</title>\n", R"(<rect width="100%" height="100%" fill="#fff"/>)", "\n", body_, "</svg>\n"});
}

}  // namespace kiln
