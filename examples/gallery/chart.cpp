#include "gallery/chart.h"

#include <algorithm>
#include <cmath>

#include "gallery/html.h"

namespace examples::gallery {
namespace {

constexpr double kWidth = 860, kHeight = 420, kLeft = 48, kRight = 10, kTop = 10, kBottom = 40;
constexpr double kLegendLine = 18;

// Whole numbers of ticks around what is to be drawn.
struct Axis {
  double low, high, tick;

  Axis(double least, double most, double tickLength)
      : low(std::floor(least / tickLength) * tickLength),
        high(std::ceil(most / tickLength) * tickLength),
        tick(tickLength) {}
  double part(double value) const { return (value - low) / (high - low); }
};

class Drawing {
 public:
  Drawing(Axis x, Axis y) : x_(x), y_(y) {
    svg_ = format("<svg viewBox=\"0 0 %.0f %.0f\" role=img aria-label=\"PSNR over bits per pixel\">", kWidth, kHeight);
    for (double at = x.low; at <= x.high + x.tick / 2; at += x.tick) {
      line(left(at), kTop, left(at), kHeight - kBottom);
      text(left(at), kHeight - kBottom + 16, "middle", format("%g", at));
    }
    for (double at = y.low; at <= y.high + y.tick / 2; at += y.tick) {
      line(kLeft, top(at), kWidth - kRight, top(at));
      text(kLeft - 6, top(at) + 4, "end", format("%g", at));
    }
    text((kLeft + kWidth) / 2, kHeight - 6, "middle", "bits per pixel");
    text(kLeft + 6, kTop + 14, "start", "PSNR in dB");
  }

  void curve(const Curve& curve, size_t number) {
    const std::string colour = format("var(--c%zu)", number % 7);
    std::string path;
    for (const Curve::Point& point : curve.points) {
      path += format("%s%.1f %.1f", path.empty() ? "M" : "L", left(point.bitsPerPixel), top(point.psnr));
      svg_ += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3.5\" fill=\"%s\"/>", left(point.bitsPerPixel),
                     top(point.psnr), colour.c_str());
    }
    svg_ += "<path d=\"" + path + "\" fill=none stroke=\"" + colour + "\" stroke-width=2 />";
    const double y = kHeight - kBottom - 14 - kLegendLine * static_cast<double>(number);
    svg_ += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"5\" fill=\"%s\"/>", kWidth - 190, y - 4, colour.c_str());
    text(kWidth - 178, y, "start", escaped(curve.name));
  }

  std::string finished() const { return svg_ + "</svg>"; }

 private:
  double left(double x) const { return kLeft + x_.part(x) * (kWidth - kLeft - kRight); }
  double top(double y) const { return kHeight - kBottom - y_.part(y) * (kHeight - kTop - kBottom); }
  void line(double x0, double y0, double x1, double y1) {
    svg_ += format("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"/>", x0, y0, x1, y1);
  }
  void text(double x, double y, const char* anchor, const std::string& words) {
    svg_ += format("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\">%s</text>", x, y, anchor, words.c_str());
  }

  Axis x_, y_;
  std::string svg_;
};

}  // namespace

std::string chart(const std::vector<Curve>& curves) {
  double mostBits = 1, least = 100, most = 0;
  for (const Curve& curve : curves) {
    for (const Curve::Point& point : curve.points) {
      if (std::isinf(point.psnr)) continue;
      mostBits = std::max(mostBits, point.bitsPerPixel);
      least = std::min(least, point.psnr);
      most = std::max(most, point.psnr);
    }
  }
  Drawing drawing(Axis(0, mostBits, 1), Axis(least, std::max(most, least + 1), 5));
  for (size_t i = 0; i < curves.size(); ++i) drawing.curve(curves[i], i);
  return drawing.finished();
}

}  // namespace examples::gallery
