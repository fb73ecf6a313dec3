// What the demo shows: a picture that went through the codecs, how well, how small and how fast.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "common/image.h"

namespace examples::gallery {

using Bytes = std::vector<uint8_t>;

// What became of the comparison with an independent decoder.
struct Verdict {
  std::string decoder;  // empty where none that reads the file is installed
  bool canRead = true;
  int difference = 0;  // the largest of a sample
  int allowed = 0;

  bool agrees() const { return canRead && difference <= allowed; }
  std::string words() const;
};

struct Exhibit {
  std::string family;
  std::string name;
  std::string fileName;      // in the gallery's directory; empty where there is no file
  std::string comment;       // in a sentence or two, where there is something to know
  bool exact = false;        // the picture must be the original
  bool decodedOnly = false;  // the library does not encode it

  size_t bytes = 0;
  double encodeSeconds = 0;
  double decodeSeconds = 0;
  Image picture;    // as decoded
  double psnr = 0;  // infinite for the original itself
  Verdict verdict;

  bool agrees() const;
};

// Quality over size: a curve, or a single point.
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
  // Exhibits are held against the original; their files and decoded pictures go into the directory. A quick visit
  // measures every call once.
  Gallery(Image original, std::filesystem::path directory, bool quick);

  using Encode = std::function<Bytes(const Image& original)>;
  using Decode = std::function<Image(std::span<const uint8_t> file)>;
  using Judge = std::function<Verdict(const Exhibit& exhibit, const Bytes& file)>;
  // Codes the original, decodes the result, measures both and hears the judge; prints a line about it.
  const Exhibit& show(Exhibit exhibit, const Encode& encode, const Decode& decode, const Judge& judge);
  // Puts the exhibit into the drawing, a point.
  void draw(const Exhibit& exhibit);
  // Draws the curve of some files.
  void draw(const std::string& family, const std::string& name, const std::vector<Encode>& encodes,
            const Decode& decode);
  void show(Plate plate);

  const Image& original() const { return original_; }
  std::filesystem::path path(const std::string& fileName) const { return directory_ / fileName; }
  const std::vector<Exhibit>& exhibits() const { return exhibits_; }
  const std::vector<Curve>& curves() const { return curves_; }
  const std::vector<Plate>& plates() const { return plates_; }
  double megapixels() const { return static_cast<double>(original_.width) * original_.height / 1e6; }
  // How many exhibits are not what they must be.
  int64_t faults() const;

 private:
  double medianSeconds(const std::function<void()>& call) const;

  Image original_;
  std::filesystem::path directory_;
  bool quick_;
  std::vector<Exhibit> exhibits_;
  std::vector<Curve> curves_;
  std::vector<Plate> plates_;
};

// As printf.
[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...);
// Numbers as they stand in the tables, "-" where there is none: the size, bits per pixel, the PSNR ("exact" for equal
// pictures), and both speeds in megapixels per second.
std::vector<std::string> numbers(const Exhibit& exhibit, double megapixels);

// The rooms, each with the exhibits of a family.
void showJpeg(Gallery& gallery);
void showJpeg2k(Gallery& gallery);
void showTiff(Gallery& gallery);
void showTextures(Gallery& gallery);
void showPhotoCoreTransform(Gallery& gallery);

}  // namespace examples::gallery
