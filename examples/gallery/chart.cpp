#include "gallery/chart.h"

#include <algorithm>
#include <cmath>

namespace examples::gallery {
namespace {

constexpr double kWidth = 720, kHeight = 420, kLeft = 48, kRight = 16, kTop = 16, kBottom = 64;
constexpr double kTick = 5;  // of the PSNR, in dB

std::string colour(size_t number) { return format("var(--c%zu)", number % kCurveColours); }

// Bits per pixel from left to right, each power of 2 as far from the next; dB from bottom to top.
class Drawing {
 public:
  Drawing(double leastBits, double mostBits, double leastPsnr, double mostPsnr)
      : x_(std::log2(leastBits), std::log2(mostBits)), y_(leastPsnr / kTick, mostPsnr / kTick) {
    svg_ = format("<svg viewBox=\"0 0 %.0f %.0f\" role=\"img\" aria-label=\"PSNR over bits per pixel\">\n", kWidth,
                  kHeight);
    for (int power = x_.low; power <= x_.high; ++power) {
      const double x = left(std::exp2(power));
      line(x, kTop, x, kHeight - kBottom);
      text(x, kHeight - kBottom + 26, "middle", format("%g", std::exp2(power)));
    }
    for (int tick = y_.low; tick <= y_.high; ++tick) {
      const double psnr = tick * kTick;
      line(kLeft, top(psnr), kWidth - kRight, top(psnr));
      text(kLeft - 8, top(psnr) + 5, "end", format("%g", psnr));
    }
    text((kLeft + kWidth) / 2, kHeight - 8, "middle", "bits per pixel");
    text(kLeft + 8, kTop + 20, "start", "PSNR in dB");
  }

  void add(const Curve& curve, size_t number) {
    std::string path;
    for (const Curve::Point& point : curve.points) {
      if (std::isinf(point.psnr)) continue;
      const double x = left(point.bitsPerPixel), y = top(point.psnr);
      path += format("%s%.1f %.1f", path.empty() ? "M" : "L", x, y);
      svg_ += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"%d\" fill=\"%s\"/>\n", x, y, curve.points.size() > 1 ? 4 : 7,
                     colour(number).c_str());
    }
    if (curve.points.size() < 2) return;
    svg_ += "<path d=\"" + path + "\" fill=\"none\" stroke=\"" + colour(number) + "\" stroke-width=\"2\"/>\n";
  }

  std::string finished() const { return svg_ + "</svg>\n"; }

 private:
  // Whole ticks around what is drawn.
  struct Range {
    Range(double least, double most)
        : low(static_cast<int>(std::floor(least))), high(std::max(low + 1, static_cast<int>(std::ceil(most)))) {}
    double part(double value) const { return (value - low) / (high - low); }

    int low, high;
  };

  double left(double bits) const { return kLeft + x_.part(std::log2(bits)) * (kWidth - kLeft - kRight); }
  double top(double psnr) const { return kHeight - kBottom - y_.part(psnr / kTick) * (kHeight - kTop - kBottom); }
  void line(double x0, double y0, double x1, double y1) {
    svg_ += format("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"/>\n", x0, y0, x1, y1);
  }
  void text(double x, double y, const char* anchor, const std::string& words) {
    svg_ += format("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\">%s</text>\n", x, y, anchor, words.c_str());
  }

  Range x_, y_;
  std::string svg_;
};

}  // namespace

std::string chart(const std::vector<Curve>& curves) {
  double leastBits = 1e9, mostBits = 0, leastPsnr = 1e9, mostPsnr = 0;
  for (const Curve& curve : curves) {
    for (const Curve::Point& point : curve.points) {
      if (std::isinf(point.psnr)) continue;
      leastBits = std::min(leastBits, point.bitsPerPixel);
      mostBits = std::max(mostBits, point.bitsPerPixel);
      leastPsnr = std::min(leastPsnr, point.psnr);
      mostPsnr = std::max(mostPsnr, point.psnr);
    }
  }
  if (mostBits == 0) return "<p>Every picture is exact: there is nothing to draw.</p>\n";
  Drawing drawing(leastBits, mostBits, leastPsnr, mostPsnr);
  std::string legend = "<p class=\"legend\">";
  for (size_t i = 0; i < curves.size(); ++i) {
    drawing.add(curves[i], i);
    legend += "<span style=\"--dot: " + colour(i) + "\">" + curves[i].name + "</span>\n";
  }
  return drawing.finished() + legend + "</p>\n";
}

}  // namespace examples::gallery
