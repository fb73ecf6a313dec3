#include <algorithm>

#include "common/error.h"
#include "jpeg2k/codestream_reader.h"
#include "jpeg2k/markers.h"

namespace examples::jpeg2k {
namespace {

constexpr size_t kMaxVolumes = 1024;
constexpr int32_t kMaxRoiShift = 37;

CodingStyle readStyle(ByteReader& in, bool ownPrecincts) {
  CodingStyle style;
  style.levels = in.byte();
  style.blockWidth = in.byte() + 2;
  style.blockHeight = in.byte() + 2;
  style.blockStyle = in.byte();
  const uint8_t wavelet = in.byte();
  if (style.levels > kMaxLevels) throw Error("there are more wavelet levels than 32");
  if (style.blockWidth > 10 || style.blockHeight > 10 || style.blockWidth + style.blockHeight > 12) {
    throw Error("the size of code-blocks is out of range");
  }
  if ((style.blockStyle & 0xc0) != 0) throw Error("code-blocks of this style are not supported");
  if (wavelet > 1) throw Error("the wavelet is not supported");
  style.reversible = wavelet == 1;
  for (int32_t r = 0; ownPrecincts && r <= style.levels; ++r) {
    const uint8_t size = in.byte();
    CodingStyle::Precinct& precinct = style.precincts[static_cast<size_t>(r)];
    precinct = {static_cast<uint8_t>(size & 15), static_cast<uint8_t>(size >> 4)};
    if (r > 0 && (precinct.width == 0 || precinct.height == 0)) throw Error("the size of precincts is out of range");
  }
  return style;
}

Quantization readQuantization(ByteReader& in) {
  Quantization quantization;
  const uint8_t style = in.byte();
  quantization.guardBits = style >> 5;
  if ((style & 31) > 2) throw Error("the quantization style is not supported");
  quantization.style = static_cast<QuantizationStyle>(style & 31);
  const bool exponentsOnly = quantization.style == QuantizationStyle::none;
  size_t count = 0;
  for (; in.left() >= (exponentsOnly ? 1u : 2u) && count < quantization.steps.size(); ++count) {
    Quantization::Step& step = quantization.steps[count];
    if (exponentsOnly) {
      step.exponent = static_cast<uint8_t>(in.byte() >> 3);
    } else {
      const uint16_t word = in.word();
      step = {static_cast<uint8_t>(word >> 11), static_cast<uint16_t>(word & 0x7ff)};
    }
  }
  if (count == 0) throw Error("a header is too short");
  if (quantization.style == QuantizationStyle::derived) {
    // T.800 Formula E-5: each resolution up takes one from the exponent.
    for (size_t i = 1; i < quantization.steps.size(); ++i) {
      const int32_t up = static_cast<int32_t>((i - 1) / 3);
      quantization.steps[i] = {static_cast<uint8_t>(std::max(quantization.steps[0].exponent - up, 0)),
                               quantization.steps[0].mantissa};
    }
  }
  return quantization;
}

}  // namespace

CodingHeaders::CodingHeaders(const ImageSize& size)
    : ownStyle_(size.components.size()), ownQuantization_(size.components.size()) {
  coding_.components.resize(size.components.size());
}

bool CodingHeaders::read(uint16_t code, ByteReader in) {
  switch (code) {
    case marker::COD:
      readCodingDefault(in);
      return true;
    case marker::COC:
      readCodingComponent(in);
      return true;
    case marker::QCD:
      readQuantizationDefault(in);
      return true;
    case marker::QCC:
      readQuantizationComponent(in);
      return true;
    case marker::RGN:
      readRegion(in);
      return true;
    case marker::POC:
      readProgressionChanges(in);
      return true;
    default:
      return false;
  }
}

void CodingHeaders::beginTile() {
  ownVolumes_ = false;
  std::fill(ownStyle_.begin(), ownStyle_.end(), false);
  std::fill(ownQuantization_.begin(), ownQuantization_.end(), false);
}

void CodingHeaders::check() const {
  if (!hasCoding_ || !hasQuantization_) throw Error("the header lacks coding parameters");
}

int32_t CodingHeaders::componentNumber(ByteReader& in) const {
  const uint16_t number = in.number(coding_.components.size() > 256);
  if (number >= coding_.components.size()) throw Error("a component's number is out of range");
  return number;
}

void CodingHeaders::readCodingDefault(ByteReader in) {
  const uint8_t flags = in.byte();
  const uint8_t order = in.byte();
  if (order > static_cast<uint8_t>(Progression::cprl)) throw Error("the progression order is out of range");
  coding_.order = static_cast<Progression>(order);
  coding_.layers = in.word();
  if (coding_.layers == 0) throw Error("there are no layers");
  coding_.colorTransform = in.byte() != 0;
  coding_.sop = (flags & 2) != 0;
  coding_.eph = (flags & 4) != 0;
  const CodingStyle style = readStyle(in, (flags & 1) != 0);
  for (size_t c = 0; c < coding_.components.size(); ++c) {
    if (!ownStyle_[c]) coding_.components[c].style = style;
  }
  hasCoding_ = true;
}

void CodingHeaders::readCodingComponent(ByteReader in) {
  const size_t c = static_cast<size_t>(componentNumber(in));
  const uint8_t flags = in.byte();
  coding_.components[c].style = readStyle(in, (flags & 1) != 0);
  ownStyle_[c] = true;
}

void CodingHeaders::readQuantizationDefault(ByteReader in) {
  const Quantization quantization = readQuantization(in);
  for (size_t c = 0; c < coding_.components.size(); ++c) {
    if (!ownQuantization_[c]) coding_.components[c].quantization = quantization;
  }
  hasQuantization_ = true;
}

void CodingHeaders::readQuantizationComponent(ByteReader in) {
  const size_t c = static_cast<size_t>(componentNumber(in));
  coding_.components[c].quantization = readQuantization(in);
  ownQuantization_[c] = true;
}

void CodingHeaders::readRegion(ByteReader in) {
  const size_t c = static_cast<size_t>(componentNumber(in));
  if (in.byte() != 0) throw Error("the style of the region of interest is not supported");
  coding_.components[c].roiShift = in.byte();
  if (coding_.components[c].roiShift > kMaxRoiShift) throw Error("the region of interest is out of range");
}

void CodingHeaders::readProgressionChanges(ByteReader in) {
  if (!ownVolumes_) coding_.volumes.clear();
  ownVolumes_ = true;
  const bool wide = coding_.components.size() > 256;
  const size_t entry = wide ? 9 : 7;
  while (in.left() >= entry) {
    PacketVolume volume;
    volume.resolutionBegin = in.byte();
    volume.componentBegin = in.number(wide);
    volume.layerEnd = in.word();
    volume.resolutionEnd = in.byte();
    volume.componentEnd = in.number(wide);
    if (volume.componentEnd == 0) volume.componentEnd = 256;  // T.800 Table A.32
    const uint8_t order = in.byte();
    if (order > static_cast<uint8_t>(Progression::cprl)) throw Error("the progression order is out of range");
    volume.order = static_cast<Progression>(order);
    if (coding_.volumes.size() == kMaxVolumes) throw Error("there are too many progression order changes");
    coding_.volumes.push_back(volume);
  }
}

}  // namespace examples::jpeg2k
