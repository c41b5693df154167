// The few elements of SVG 1.1 that pictures here are made of.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kiln {

// Lengths are in pixels.
struct Box {
  double x;
  double y;
  double width;
  double height;
};

enum class Anchor : uint8_t { Start, End };

class SvgWriter {
 public:
  // Widths of texts follow from their lengths, as all have this font.
  static double textWidth(std::string_view text, double size);
  // The text, or its beginning and three dots where it is wider than `width`.
  static std::string cut(std::string_view text, double size, double width);

  // `style` is attributes such as `fill="none"`.
  void rect(const Box& box, std::string_view style);
  // `count` vertical lines, the first at the left and top of the box, which is between it and the next one.
  void verticalLines(const Box& box, uint32_t count, std::string_view style);
  // `y` is the base line. What XML cannot hold is shown as a question mark.
  void text(double x, double y, double size, std::string_view text, Anchor anchor = Anchor::Start,
            std::string_view style = "");
  // Something that is the same in all pictures.
  void raw(std::string_view elements) { body_ += elements; }

  // The document of everything drawn so far.
  std::string finish(double width, double height, std::string_view title) const;

 private:
  std::string body_;
};

}  // namespace kiln
