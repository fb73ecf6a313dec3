#include "jpeg/script.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "common/error.h"
#include "jpeg/codec.h"

namespace examples::jpeg {
namespace {

// Reads numbers and signs, with blanks and comments between them.
class ScriptReader {
 public:
  explicit ScriptReader(const std::string& text) : text_(text) {}

  bool atEnd() {
    skip();
    return at_ == text_.size();
  }
  bool takeIf(char sign) {
    skip();
    if (at_ == text_.size() || text_[at_] != sign) return false;
    ++at_;
    return true;
  }
  void expect(char sign) {
    if (!takeIf(sign)) fail(std::string("'") + sign + "'");
  }
  int32_t number() {
    skip();
    if (at_ == text_.size() || !std::isdigit(static_cast<unsigned char>(text_[at_]))) fail("a number");
    int32_t value = 0;
    for (; at_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[at_])); ++at_) {
      value = std::min(1000, value * 10 + (text_[at_] - '0'));
    }
    return value;
  }

 private:
  void skip() {
    for (; at_ < text_.size(); ++at_) {
      if (text_[at_] == '#') {
        at_ = std::min(text_.find('\n', at_), text_.size() - 1);
      } else if (!std::isspace(static_cast<unsigned char>(text_[at_]))) {
        return;
      }
    }
  }
  [[noreturn]] void fail(const std::string& wanted) const {
    const auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<ptrdiff_t>(at_), '\n');
    throw Error("line " + std::to_string(line) + " of the script: expected " + wanted);
  }

  const std::string& text_;
  size_t at_ = 0;
};

}  // namespace

std::vector<Scan> usualScript(const Frame& frame) {
  const std::vector<size_t> all = frame.allComponents();
  std::vector<Scan> scans = {{all, 0, 0, 0, 1}};
  const auto each = [&](const std::vector<size_t>& components, int32_t first, int32_t last, int32_t high, int32_t low) {
    for (const size_t component : components) scans.push_back({{component}, first, last, high, low});
  };
  if (frame.coding == ColorCoding::yCbCr) {
    each({0}, 1, 5, 0, 2);
    each({2, 1}, 1, 63, 0, 1);
    each({0}, 6, 63, 0, 2);
    each({0}, 1, 63, 2, 1);
    scans.push_back({all, 0, 0, 1, 0});
    each({2, 1, 0}, 1, 63, 1, 0);
    return scans;
  }
  each(all, 1, 5, 0, 2);
  each(all, 6, 63, 0, 2);
  each(all, 1, 63, 2, 1);
  scans.push_back({all, 0, 0, 1, 0});
  each(all, 1, 63, 1, 0);
  return scans;
}

void checkScript(const std::vector<Scan>& scans, size_t components) {
  Progress progress(components);
  for (const Scan& scan : scans) {
    for (const size_t component : scan.components) {
      if (component >= components) throw Error("the script names a component that the image lacks");
    }
    if (!progress.add(scan)) throw Error("the script's scans do not follow one another");
  }
  if (!progress.complete()) throw Error("the script's scans leave out some of the coefficients");
}

std::vector<Scan> parseScript(const std::string& text) {
  std::vector<Scan> scans;
  ScriptReader reader(text);
  while (!reader.atEnd()) {
    Scan scan;
    do {
      scan.components.push_back(static_cast<size_t>(reader.number()));
    } while (reader.takeIf(','));
    reader.expect(':');
    scan.first = reader.number();
    reader.expect('-');
    scan.last = reader.number();
    reader.expect(',');
    scan.highBit = reader.number();
    reader.expect(',');
    scan.lowBit = reader.number();
    reader.expect(';');
    scans.push_back(std::move(scan));
  }
  if (scans.empty()) throw Error("the script has no scans");
  return scans;
}

}  // namespace examples::jpeg
