// What the demo shows: a picture that went through a codec, how well, how small and how fast.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "common/image.h"

namespace examples::gallery {

struct Exhibit {
  std::string family;
  std::string name;
  std::string fileName;  // in the gallery's directory
  size_t bytes = 0;
  double encodeSeconds = 0;
  double decodeSeconds = 0;
  Image picture;        // as decoded
  bool exact = false;   // it must be the original
  std::string check;    // what became of the comparison with an independent decoder
  bool agrees = true;   // with that decoder, and with the original where it must be that
  double psnr = 0;      // infinite for the original itself
  std::string comment;  // in a sentence, where there is something to know
};

// A curve of quality over size.
struct Curve {
  struct Point {
    double bitsPerPixel;
    double psnr;
  };
  std::string name;
  std::vector<Point> points;
};

// A picture that explains itself, besides the exhibits.
struct Plate {
  std::string title;
  std::string fileName;
  Image picture;
  std::string caption;
};

class Gallery {
 public:
  // Exhibits are held against the original; their files and decoded pictures go into the directory.
  Gallery(Image original, std::filesystem::path directory);

  // Codes the original, decodes the result and measures both; `encode` returns a file, which is written.
  using Encode = std::function<std::vector<uint8_t>()>;
  using Decode = std::function<Image(const std::vector<uint8_t>& file)>;
  Exhibit take(Exhibit exhibit, const Encode& encode, const Decode& decode) const;
  // Adds the exhibit and prints its line.
  void show(Exhibit exhibit);
  void show(Curve curve) { curves_.push_back(std::move(curve)); }
  void show(Plate plate);
  // The quality of a file at its size.
  Curve::Point point(size_t bytes, const Image& decoded) const;

  const Image& original() const { return original_; }
  std::filesystem::path path(const std::string& fileName) const { return directory_ / fileName; }
  const std::vector<Exhibit>& exhibits() const { return exhibits_; }
  const std::vector<Curve>& curves() const { return curves_; }
  const std::vector<Plate>& plates() const { return plates_; }
  double pixels() const { return static_cast<double>(original_.width) * original_.height; }
  // Whether all exhibits agree.
  bool agrees() const;

 private:
  Image original_;
  std::filesystem::path directory_;
  std::vector<Exhibit> exhibits_;
  std::vector<Curve> curves_;
  std::vector<Plate> plates_;
};

// Median seconds of a call, repeated for a while.
double medianSeconds(const std::function<void()>& call);
// Infinite for equal pictures.
double psnr(const Image& a, const Image& b);
int largestDifference(const Image& a, const Image& b);

// The rooms, each with the exhibits of a family.
void showJpeg(Gallery& gallery);
void showJpeg2k(Gallery& gallery);
void showTiff(Gallery& gallery);
void showTextures(Gallery& gallery);
void showPhotoCoreTransform(Gallery& gallery);

}  // namespace examples::gallery
