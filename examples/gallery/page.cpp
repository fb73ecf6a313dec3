#include "gallery/page.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "common/error.h"
#include "common/files.h"
#include "common/image_file.h"
#include "gallery/chart.h"
#include "gallery/html.h"
#include "jpeg/codec.h"

namespace examples::gallery {
namespace {

constexpr int32_t kCutSide = 176;
constexpr int32_t kOverviewWidth = 1000;
constexpr int kMagnified = 8;  // times, differences

const char* const kStyle = R"(
:root { color-scheme: light dark; --paper: #fbfaf8; --ink: #1c1c1e; --faint: #6b6b70; --line: #d9d7d2; --card: #fff;
  --c0: #b3261e; --c1: #c77700; --c2: #0b57d0; --c3: #5f6368; --c4: #146c2e; --c5: #7b1fa2; --c6: #00796b; }
@media (prefers-color-scheme: dark) { :root { --paper: #151517; --ink: #e8e6e3; --faint: #9a9aa0; --line: #38383d;
  --card: #1e1e21; --c0: #f2857d; --c1: #f0b45b; --c2: #8ab4f8; --c3: #bdc1c6; --c4: #7fd29a; --c5: #d7a6ee;
  --c6: #6fd6c6; } }
* { box-sizing: border-box; }
body { margin: 0 auto; padding: 1.5rem 1rem 4rem; max-width: 70rem; background: var(--paper); color: var(--ink);
  font: 16px/1.5 system-ui, sans-serif; }
h1 { font-size: 1.6rem; margin: 0; } h2 { font-size: 1.2rem; margin: 2.5rem 0 .75rem; } h3 { font-size: 1rem; margin: 0; }
p { margin: .4rem 0; max-width: 44rem; } .faint { color: var(--faint); font-size: .875rem; }
img { max-width: 100%; height: auto; display: block; border-radius: 4px; }
.scroll { overflow-x: auto; } table { border-collapse: collapse; width: 100%; font-variant-numeric: tabular-nums; }
th, td { padding: .3rem .6rem; text-align: right; border-bottom: 1px solid var(--line); white-space: nowrap; }
th { font-weight: 600; font-size: .8rem; color: var(--faint); } th:nth-child(-n+2), td:nth-child(-n+2), th:last-child,
td:last-child { text-align: left; }
.cards { display: grid; gap: 1rem; grid-template-columns: repeat(auto-fill, minmax(min(100%, 21rem), 1fr)); }
.card { background: var(--card); border: 1px solid var(--line); border-radius: 8px; padding: .75rem; }
.pair { display: grid; grid-template-columns: 1fr 1fr; gap: .5rem; margin: .5rem 0; }
.pair img { width: 100%; image-rendering: pixelated; }
.chart text { fill: var(--ink); font: 12px system-ui, sans-serif; } .chart .faint { fill: var(--faint); }
.chart line { stroke: var(--line); } .chart svg { width: 100%; height: auto; max-width: 56rem; }
)";

std::string dataUri(const Image& image, const Gallery& gallery) {
  const std::filesystem::path path = gallery.path("page.png");
  writeImage(path, image);
  const std::vector<uint8_t> bytes = readFile(path);
  std::filesystem::remove(path);
  return "data:image/png;base64," + base64(bytes);
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

// The whole picture, small enough for a page, as a JPEG file.
std::string overview(const Image& image) {
  Image small = image;
  std::vector<uint8_t> file;
  for (int scale = 1; scale < 8 && small.width > kOverviewWidth; scale *= 2) {
    jpeg::encode(small, {95, jpeg::Sampling::s444}, file);
    jpeg::decode(file, {jpeg::Upsampling::triangle, 2}, small);
  }
  jpeg::encode(small, {85, jpeg::Sampling::s420}, file);
  return "data:image/jpeg;base64," + base64(file);
}

std::string quality(const Exhibit& exhibit) {
  return std::isinf(exhibit.psnr) ? "exact" : format("%.1f dB", exhibit.psnr);
}

std::string table(const Gallery& gallery) {
  std::string html =
      "<div class=scroll><table><tr><th>family<th>coding<th>size<th>bits/pixel<th>PSNR<th>encode MP/s<th>decode "
      "MP/s<th>independent decoder</tr>\n";
  for (const Exhibit& e : gallery.exhibits()) {
    const double bytes = static_cast<double>(e.bytes);
    html += "<tr><td>" + escaped(e.family) + "<td>" + escaped(e.name);
    html +=
        format("<td>%.0f KB<td>%.2f<td>%s<td>%.0f<td>%.0f<td>", bytes / 1e3, bytes * 8 / gallery.pixels(),
               quality(e).c_str(), gallery.pixels() / e.encodeSeconds / 1e6, gallery.pixels() / e.decodeSeconds / 1e6);
    html += escaped(e.check) + (e.agrees ? "" : " <b>differs</b>") + "</tr>\n";
  }
  return html +
         "</table></div>\n<p class=faint>One thread, in memory, medians. The last column names a decoder that has "
         "nothing to do with this library and the largest difference of a sample from its result.</p>\n";
}

std::string card(const Exhibit& exhibit, const Gallery& gallery, Corner corner) {
  const Image part = cut(exhibit.picture, corner);
  const Image difference = magnifiedDifference(part, cut(gallery.original(), corner));
  const double bits = static_cast<double>(exhibit.bytes) * 8 / gallery.pixels();
  const std::string name = escaped(exhibit.family + ", " + exhibit.name);
  return "<div class=card><h3>" + name + "</h3><div class=pair><img alt=\"" + name + ", a part\" src=\"" +
         dataUri(part, gallery) + "\"><img alt=\"Difference from the original\" src=\"" + dataUri(difference, gallery) +
         "\"></div><p class=faint>" + format("%.2f bits/pixel, %s. ", bits, quality(exhibit).c_str()) +
         escaped(exhibit.comment) + "</p></div>\n";
}

}  // namespace

void writePage(const Gallery& gallery, const std::string& title, const std::filesystem::path& path) {
  const Image& original = gallery.original();
  const Corner corner = mostDetailed(original);
  std::string html =
      "<!doctype html>\n<html lang=en><meta charset=utf-8>\n"
      "<meta name=viewport content=\"width=device-width, initial-scale=1\">\n<title>" +
      escaped(title) + "</title>\n<style>" + kStyle + "</style>\n";
  html += "<h1>" + escaped(title) + "</h1>\n<p class=faint>" +
          format("%d x %d pixels, %.1f megapixels", original.width, original.height, gallery.pixels() / 1e6) +
          "</p>\n<img alt=\"The original\" src=\"" + overview(original) + "\">\n";
  html += "<h2>Quality over size</h2>\n<div class=chart>" + chart(gallery.curves()) + "</div>\n";
  html += "<h2>Sizes and speeds</h2>\n" + table(gallery);
  html += "<h2>Side by side</h2>\n<p>The same part of every picture, and " + std::to_string(kMagnified) +
          " times its difference from the original: grey where there is none.</p>\n<div class=cards>\n";
  html += "<div class=card><h3>Original</h3><div class=pair><img alt=\"The original, a part\" src=\"" +
          dataUri(cut(original, corner), gallery) + "\"></div></div>\n";
  for (const Exhibit& exhibit : gallery.exhibits()) html += card(exhibit, gallery, corner);
  html += "</div>\n";
  for (const Plate& plate : gallery.plates()) {
    html += "<h2>" + escaped(plate.title) + "</h2>\n<img alt=\"" + escaped(plate.title) + "\" src=\"" +
            overview(plate.picture) + "\">\n<p>" + escaped(plate.caption) + "</p>\n";
  }
  OutputFile file(path);
  file.write({reinterpret_cast<const uint8_t*>(html.data()), html.size()});
  file.commit();
}

}  // namespace examples::gallery
