#include "gallery/page.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "common/error.h"
#include "common/files.h"
#include "common/png_file.h"
#include "gallery/chart.h"
#include "jpeg/codec.h"

namespace examples::gallery {
namespace {

constexpr int32_t kCutSide = 80;  // pixels, which are shown 3 times as large, or twice on a phone
constexpr int32_t kOverviewSide = 1400;
constexpr int kMagnified = 4;  // times, differences

const char* const kStyle = R"(
:root { color-scheme: light dark; --paper: #fbfaf8; --ink: #1c1c1e; --faint: #5f5f66; --line: #d9d7d2; --wrong: #b3261e;
  --c0: #b3261e; --c1: #c77700; --c2: #0b57d0; --c3: #5f6368; --c4: #146c2e; --c5: #9334b8; --c6: #00838f; }
@media (prefers-color-scheme: dark) { :root { --paper: #151517; --ink: #e8e6e3; --faint: #a3a3aa; --line: #38383d;
  --wrong: #f2857d; --c0: #f2857d; --c1: #f0b45b; --c2: #8ab4f8; --c3: #bdc1c6; --c4: #7fd29a; --c5: #d7a6ee;
  --c6: #62d5d0; } }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 1.5rem 1rem 4rem; max-width: 72rem; background: var(--paper); color: var(--ink);
  font: 16px/1.5 system-ui, sans-serif; }
h1 { font-size: 1.6rem; margin: 0; overflow-wrap: anywhere; }
h2 { font-size: 1.25rem; margin: 2.5rem 0 .5rem; }
h3 { font-size: 1rem; margin: 0; }
p { margin: .4rem 0; max-width: 46rem; }
.faint, figcaption, th { color: var(--faint); font-size: .85rem; }
.wrong { color: var(--wrong); font-weight: 600; }
.whole { max-width: 100%; max-height: 90vh; display: block; margin: .75rem 0; border-radius: 4px; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; }
th, td { padding: .3rem .5rem; text-align: right; border-bottom: 1px solid var(--line); white-space: nowrap; }
th { font-weight: 600; }
th:first-child, td:first-child, th:last-child, td:last-child { text-align: left; }
th.family { color: var(--ink); padding-top: .8rem; }
.exhibit { display: grid; gap: .5rem 1rem; grid-template-columns: repeat(3, 240px) 1fr; padding: 1rem 0;
  border-top: 1px solid var(--line); }
figure { margin: 0; }
.cut { width: 240px; height: 240px; object-fit: contain; image-rendering: pixelated; display: block; }
@media (max-width: 65rem) { .exhibit { grid-template-columns: 240px minmax(240px, 1fr); } }
@media (max-width: 34rem) { .exhibit { grid-template-columns: repeat(2, minmax(0, 160px)); gap: .5rem; }
  .cut { width: 100%; height: auto; aspect-ratio: 1; }
  table { font-size: .9rem; }
  td:first-child { position: sticky; left: 0; background: var(--paper); white-space: normal; min-width: 8.5rem; } }
svg { width: 100%; height: auto; max-width: 52rem; display: block; }
svg text { fill: var(--ink); font: 14px system-ui, sans-serif; }
svg line { stroke: var(--line); }
@media (max-width: 34rem) { svg text { font-size: 22px; } }
.legend span { display: inline-block; margin-right: 1.25rem; }
.legend span::before { content: ""; display: inline-block; width: .75em; height: .75em; border-radius: 50%;
  background: var(--dot); margin-right: .4em; }
)";

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '<':
        result += "&lt;";
        break;
      case '&':
        result += "&amp;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += c;
    }
  }
  return result;
}

std::string base64(std::span<const uint8_t> bytes) {
  constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  result.reserve(bytes.size() / 3 * 4 + 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = std::min<size_t>(bytes.size() - i, 3);
    uint32_t word = 0;
    for (size_t k = 0; k < 3; ++k) word = word << 8 | (k < count ? bytes[i + k] : 0U);
    for (size_t k = 0; k < 4; ++k) result += k <= count ? kDigits[word >> (18 - 6 * k) & 63] : '=';
  }
  return result;
}

std::string imageElement(const char* kind, const std::string& description, const char* type,
                         std::span<const uint8_t> file) {
  return std::string("<img class=\"") + kind + "\" alt=\"" + escaped(description) + "\" src=\"data:image/" + type +
         ";base64," + base64(file) + "\"/>";
}

// A part of a picture, magnified, with a caption.
std::string figure(const Image& image, const std::string& caption) {
  char* memory = nullptr;
  size_t size = 0;
  std::FILE* const file = open_memstream(&memory, &size);
  if (!file) throw Error("no memory for a picture");
  writePng(image, file);
  std::fclose(file);
  const std::string element = imageElement("cut", caption, "png", {reinterpret_cast<uint8_t*>(memory), size});
  std::free(memory);
  return "<figure>" + element + "<figcaption>" + escaped(caption) + "</figcaption></figure>\n";
}

// The whole picture, small enough for a page.
std::string overview(const Image& image, const std::string& description) {
  Image small = image;
  Bytes file;
  for (int32_t scale = 2; scale <= 8 && std::max(small.width, small.height) > kOverviewSide; scale *= 2) {
    jpeg::encode(image, {95, jpeg::Sampling::s444}, file);
    jpeg::decode(file, {jpeg::Upsampling::triangle, scale}, small);
  }
  jpeg::encode(small, {85, jpeg::Sampling::s420}, file);
  return imageElement("whole", description, "jpeg", file) + "\n";
}

struct Corner {
  int32_t x, y;
};

Image cut(const Image& image, Corner corner) {
  Image result(std::min(kCutSide, image.width - corner.x), std::min(kCutSide, image.height - corner.y), image.channels);
  for (int32_t y = 0; y < result.height; ++y) {
    std::copy_n(image.at(corner.x, corner.y + y), result.step(), result.at(0, y));
  }
  return result;
}

// Where there is most to see: the square with the largest differences between neighbours.
Corner mostDetailed(const Image& image) {
  Corner best{0, 0};
  int64_t most = -1;
  for (int32_t top = 0; top + kCutSide <= image.height; top += kCutSide / 2) {
    for (int32_t left = 0; left + kCutSide <= image.width; left += kCutSide / 2) {
      int64_t detail = 0;
      for (int32_t y = top; y < top + kCutSide; ++y) {
        for (int32_t x = left + 1; x < left + kCutSide; ++x) detail += std::abs(*image.at(x, y) - *image.at(x - 1, y));
      }
      if (detail > most) {
        most = detail;
        best = {left, top};
      }
    }
  }
  return best;
}

Image magnifiedDifference(const Image& a, const Image& b) {
  Image result(a.width, a.height, a.channels);
  std::transform(
      a.samples.begin(), a.samples.end(), b.samples.begin(), result.samples.begin(),
      [](uint8_t x, uint8_t y) { return static_cast<uint8_t>(std::clamp(128 + kMagnified * (x - y), 0, 255)); });
  return result;
}

std::string wrongIf(bool wrong) { return wrong ? " <span class=\"wrong\">wrong</span>" : ""; }

std::string table(const Gallery& gallery) {
  std::string html = "<div class=\"scroll\"><table>\n<tr>";
  for (const char* head :
       {"coding", "size", "bits/pixel", "PSNR", "encode MP/s", "decode MP/s", "independent decoder"}) {
    html += std::string("<th>") + head + "</th>";
  }
  html += "</tr>\n";
  std::string family;
  for (const Exhibit& exhibit : gallery.exhibits()) {
    if (exhibit.family != family) html += "<tr><th class=\"family\" colspan=\"7\">" + exhibit.family + "</th></tr>\n";
    family = exhibit.family;
    html += "<tr><td>" + exhibit.name + "</td>";
    for (const std::string& number : numbers(exhibit, gallery.megapixels())) html += "<td>" + number + "</td>";
    html += "<td>" + exhibit.verdict.words() + wrongIf(!exhibit.agrees()) + "</td></tr>\n";
  }
  return html + "</table></div>\n";
}

std::string sideBySide(const Exhibit& exhibit, const Gallery& gallery, Corner corner) {
  const Image original = cut(gallery.original(), corner), decoded = cut(exhibit.picture, corner);
  const std::vector<std::string> words = numbers(exhibit, gallery.megapixels());
  const std::string size = exhibit.bytes == 0 ? "" : words[0] + ", " + words[1] + " bits a pixel, ";
  return "<div class=\"exhibit\">\n" + figure(original, "original") + figure(decoded, "decoded") +
         figure(magnifiedDifference(decoded, original), format("difference x %d", kMagnified)) + "<div><h3>" +
         exhibit.family + ", " + exhibit.name + "</h3>\n<p>" + size + words[2] + wrongIf(!exhibit.agrees()) + "</p>\n" +
         "<p class=\"faint\">" + escaped(exhibit.comment) + "</p></div>\n</div>\n";
}

std::string summary(const Gallery& gallery) {
  const int64_t faults = gallery.faults();
  const int32_t width = gallery.original().width, height = gallery.original().height;
  const std::string all = format("%d x %d pixels, %.2f megapixels. ", width, height, gallery.megapixels());
  if (faults > 0) return all + format("<span class=\"wrong\">Wrong results: %d.</span>", static_cast<int>(faults));
  return all + "Every result is what it must be.";
}

}  // namespace

void writePage(const Gallery& gallery, const std::string& title, const std::filesystem::path& path) {
  const Image& original = gallery.original();
  const Corner corner = mostDetailed(original);
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n<title>" +
      escaped(title) + "</title>\n<style>" + kStyle + "</style>\n</head>\n<body>\n";
  html += "<h1>" + escaped(title) + "</h1>\n<p>" + summary(gallery) + "</p>\n" + overview(original, "The original");
  html += "<h2>Quality over size</h2>\n" + chart(gallery.curves());
  html +=
      "<h2>Sizes and speeds</h2>\n" + table(gallery) +
      "<p class=\"faint\">On one thread, in memory; MP/s are megapixels per second. The last column names a decoder "
      "that "
      "has nothing to do with this library, the largest difference of a sample from its result, and the largest "
      "that is right. JPEG of 8 bits is compared before up-sampling and colour conversion, JPEG of 12 bits in "
      "pixels of 0 to 4095. The colours in DXT have zeros in their lowest bits here and repeat their highest there; "
      "of YCoCg, the difference is what this does not explain. The photo core transform makes no file.</p>\n";
  html += "<h2>Side by side</h2>\n<p>" +
          format(
              "The most detailed %d x %d pixels of every picture, and %d times the difference from the original: "
              "grey where there is none.</p>\n",
              std::min(kCutSide, original.width), std::min(kCutSide, original.height), kMagnified);
  for (const Exhibit& exhibit : gallery.exhibits()) html += sideBySide(exhibit, gallery, corner);
  for (const Plate& plate : gallery.plates()) {
    html += "<h2>" + plate.title + "</h2>\n" + overview(plate.picture, plate.title) + "<p>" + plate.caption + "</p>\n";
  }
  html += "</body>\n</html>\n";
  OutputFile file(path);
  file.write({reinterpret_cast<const uint8_t*>(html.data()), html.size()});
  file.commit();
}

}  // namespace examples::gallery
