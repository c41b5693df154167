#include "png.h"

#include <png.h>

#include <algorithm>

namespace kiln::screenshot {

// Points as numbers of a palette make a file a third as large as points of three bytes.
bool writePng(const std::string& path, const Picture& picture) {
  std::vector<uint32_t> palette = picture.points;
  std::sort(palette.begin(), palette.end());
  palette.erase(std::unique(palette.begin(), palette.end()), palette.end());
  std::vector<uint8_t> numbers, colours;
  for (const uint32_t point : picture.points)
    numbers.push_back(static_cast<uint8_t>(std::lower_bound(palette.begin(), palette.end(), point) - palette.begin()));
  for (const uint32_t colour : palette) {
    for (const int shift : {16, 8, 0})
      colours.push_back(static_cast<uint8_t>(colour >> shift));
  }
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = PNG_FORMAT_RGB_COLORMAP;
  image.colormap_entries = static_cast<png_uint_32>(palette.size());
  return palette.size() <= 256 &&
         png_image_write_to_file(&image, path.c_str(), 0, numbers.data(), 0, colours.data()) != 0;
}

std::optional<Picture> readPng(const std::string& path) {
  png_image image = {};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return std::nullopt;
  image.format = PNG_FORMAT_RGB;
  std::vector<uint8_t> bytes(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr) == 0) return std::nullopt;
  Picture picture{image.width, image.height, {}};
  for (size_t i = 0; i < bytes.size(); i += 3)
    picture.points.push_back(static_cast<uint32_t>(bytes[i] << 16 | bytes[i + 1] << 8 | bytes[i + 2]));
  return picture;
}

}  // namespace kiln::screenshot
