// Headers and boxes that the peer's encoder does not write, put into its files: zorj2k decodes the same picture.
#include <gtest/gtest.h>

#include <zorj.h>

#include <algorithm>
#include <bit>

#include "common/error.h"
#include "interop/jpeg2k_compare.h"
#include "interop/jpeg2k_files.h"

namespace interop {
namespace {

using Bytes = std::vector<uint8_t>;
using jpeg2k::ComponentSamples;

constexpr uint8_t kSot = 0x90, kSop = 0x91, kEph = 0x92, kSod = 0x93, kEoc = 0xd9;
constexpr uint8_t kCod = 0x52, kCoc = 0x53, kQcd = 0x5c, kQcc = 0x5d, kRgn = 0x5e, kPoc = 0x5f, kPpm = 0x60,
                  kPpt = 0x61;

void append(Bytes& to, const Bytes& bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }
void append16(Bytes& to, size_t value) { append(to, {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)}); }
void append32(Bytes& to, size_t value) {
  append16(to, value >> 16);
  append16(to, value);
}

// A codestream in pieces, to be put together anew.
struct Segment {
  uint8_t code;
  Bytes content;
};
struct TilePart {
  Bytes sot;  // the content of SOT
  std::vector<Segment> headers;
  Bytes data;
};
struct Codestream {
  std::vector<Segment> headers;
  std::vector<TilePart> parts;

  explicit Codestream(const Bytes& bytes) {
    size_t at = 2;
    const auto segments = [&](std::vector<Segment>& to, uint8_t end) {
      while (bytes[at + 1] != end) {
        const size_t length = static_cast<size_t>(bytes[at + 2] << 8 | bytes[at + 3]);
        to.push_back({bytes[at + 1], slice(bytes, at + 4, at + 2 + length)});
        at += 2 + length;
      }
    };
    segments(headers, kSot);
    while (bytes[at + 1] != kEoc) {
      TilePart part;
      part.sot = slice(bytes, at + 4, at + 12);
      const size_t end = at + (static_cast<size_t>(part.sot[2]) << 24 | static_cast<size_t>(part.sot[3]) << 16 |
                               static_cast<size_t>(part.sot[4]) << 8 | part.sot[5]);
      at += 12;
      segments(part.headers, kSod);
      part.data = slice(bytes, at + 2, end);
      at = end;
      parts.push_back(part);
    }
  }

  static Bytes slice(const Bytes& bytes, size_t begin, size_t end) {
    return {bytes.begin() + static_cast<ptrdiff_t>(begin), bytes.begin() + static_cast<ptrdiff_t>(end)};
  }

  Bytes bytes() const {
    Bytes result = {0xff, 0x4f};
    const auto add = [](Bytes& to, const Segment& segment) {
      append(to, {0xff, segment.code});
      append16(to, segment.content.size() + 2);
      append(to, segment.content);
    };
    for (const Segment& segment : headers) add(result, segment);
    for (const TilePart& part : parts) {
      Bytes rest;
      for (const Segment& segment : part.headers) add(rest, segment);
      append(rest, {0xff, kSod});
      append(rest, part.data);
      append(result, {0xff, kSot, 0, 10, part.sot[0], part.sot[1]});
      append32(result, 12 + rest.size());
      append(result, {part.sot[6], part.sot[7]});
      append(result, rest);
    }
    append(result, {0xff, kEoc});
    return result;
  }

  Segment& header(uint8_t code) {
    return *std::find_if(headers.begin(), headers.end(), [=](const Segment& s) { return s.code == code; });
  }
};

std::vector<ComponentSamples> components(const Bytes& file) {
  std::vector<ComponentSamples> result;
  EXPECT_EQ(jpeg2k::decodeComponents(file, {}, result).problem, "");
  return result;
}

void expectSamePicture(const Bytes& file, const Bytes& other) {
  const std::vector<ComponentSamples> ours = components(file), theirs = components(other);
  ASSERT_EQ(ours.size(), theirs.size());
  for (size_t c = 0; c < ours.size(); ++c) EXPECT_EQ(ours[c].samples, theirs[c].samples) << "component " << c;
}

opj_cparameters_t tiled() {
  opj_cparameters_t parameters = openjpeg::defaults();
  parameters.numresolution = 4;
  parameters.tile_size_on = OPJ_TRUE;
  parameters.cp_tdx = parameters.cp_tdy = 40;
  parameters.csty |= 6;  // SOP and EPH
  parameters.tcp_numlayers = 2;
  parameters.tcp_rates[0] = 8;
  parameters.tcp_rates[1] = 0;
  return parameters;
}

bool isMarker(const Bytes& data, size_t at, uint8_t code) {
  return at + 1 < data.size() && data[at] == 0xff && data[at + 1] == code;
}

// Packets that begin with SOP markers.
std::vector<Bytes> splitPackets(const Bytes& data) {
  std::vector<Bytes> packets;
  for (size_t at = 0; at < data.size(); ++at) {
    if (isMarker(data, at, kSop)) packets.emplace_back();
    packets.back().push_back(data[at]);
  }
  return packets;
}

// Takes the packet headers, each up to its EPH marker, out from behind their SOP markers.
Bytes takeHeaders(Bytes& data) {
  constexpr size_t kSopLength = 6;
  Bytes headers, bodies;
  for (const Bytes& packet : splitPackets(data)) {
    size_t header = kSopLength;
    while (!isMarker(packet, header, kEph)) ++header;
    header += 2;
    append(headers, Codestream::slice(packet, kSopLength, header));
    append(bodies, Codestream::slice(packet, 0, kSopLength));
    append(bodies, Codestream::slice(packet, header, packet.size()));
  }
  data = bodies;
  return headers;
}

TEST(Jpeg2kHeaders, PacketHeadersApart) {
  const Bytes file = openjpeg::encode(deepPicture({100, 70}, 3, 8), tiled(), true);
  Codestream inTileParts(file), inMain(file);
  for (TilePart& part : inTileParts.parts) {
    const Bytes headers = takeHeaders(part.data);
    const size_t half = headers.size() / 2;
    part.headers.push_back({kPpt, {0}});
    append(part.headers.back().content, Codestream::slice(headers, 0, half));
    part.headers.push_back({kPpt, {1}});
    append(part.headers.back().content, Codestream::slice(headers, half, headers.size()));
  }
  expectSamePicture(inTileParts.bytes(), file);

  Bytes all;
  for (TilePart& part : inMain.parts) {
    const Bytes headers = takeHeaders(part.data);
    append32(all, headers.size());
    append(all, headers);
  }
  for (size_t at = 0, number = 0; at < all.size(); at += 301, ++number) {  // cut anywhere
    inMain.headers.push_back({kPpm, {static_cast<uint8_t>(number)}});
    append(inMain.headers.back().content, Codestream::slice(all, at, std::min(at + 301, all.size())));
  }
  expectSamePicture(inMain.bytes(), file);
  EXPECT_EQ(openjpeg::decode(inMain.bytes()).size(), 3u) << "the peer reads it too";
}

// What components and tiles say for themselves goes before what is said for all.
TEST(Jpeg2kHeaders, OneOverridesAnother) {
  const Bytes file = openjpeg::encode(deepPicture({100, 70}, 3, 8), tiled(), true);
  const Codestream original(file);
  const Bytes cod = Codestream(file).header(kCod).content, qcd = Codestream(file).header(kQcd).content;
  Bytes wrongCod = cod, wrongQcd = qcd;
  wrongCod[6] = 4;  // blocks of 64 x 16
  wrongCod[7] = 2;
  wrongQcd[1] ^= 0x18;
  const auto componentHeaders = [&](std::vector<Segment>& to, bool beforeDefault) {
    std::vector<Segment> own;
    for (uint8_t c = 0; c < 3; ++c) {
      Bytes coc = {c, 0};
      append(coc, Codestream::slice(cod, 5, cod.size()));
      Bytes qcc = {c};
      append(qcc, qcd);
      own.push_back({kCoc, coc});
      own.push_back({kQcc, qcc});
    }
    to.insert(beforeDefault ? to.begin() + 1 : to.end(), own.begin(), own.end());
  };
  for (const bool beforeDefault : {false, true}) {
    Codestream byComponent = original;
    byComponent.header(kCod).content = wrongCod;
    byComponent.header(kQcd).content = wrongQcd;
    componentHeaders(byComponent.headers, beforeDefault);
    expectSamePicture(byComponent.bytes(), file);
  }
  Codestream byTile = original;
  byTile.header(kCod).content = wrongCod;
  byTile.header(kQcd).content = wrongQcd;
  for (TilePart& part : byTile.parts) part.headers = {{kCod, cod}, {kQcd, qcd}};
  expectSamePicture(byTile.bytes(), file);
  // A tile's default goes before a component's own parameters in the main header.
  Codestream tileFirst = byTile;
  for (uint8_t c = 0; c < 3; ++c) {
    Bytes coc = {c, 0};
    append(coc, Codestream::slice(wrongCod, 5, cod.size()));
    tileFirst.headers.push_back({kCoc, coc});
  }
  expectSamePicture(tileFirst.bytes(), file);
}

// Packets of a file without tiles put in another order, in parts that overlap each other: what a part before has had is
// left out.
TEST(Jpeg2kHeaders, ProgressionOrderChanges) {
  constexpr size_t kLayers = 3, kResolutions = 4, kComponents = 3;
  opj_cparameters_t parameters = openjpeg::defaults();
  parameters.numresolution = kResolutions;
  parameters.csty |= 6;
  parameters.tcp_numlayers = kLayers;
  for (int layer = 0; layer < 3; ++layer) parameters.tcp_rates[layer] = static_cast<float>(8 - 4 * layer);
  const Bytes file = openjpeg::encode(deepPicture({90, 75}, 3, 8), parameters, true);
  Codestream changed(file);
  ASSERT_EQ(changed.parts.size(), 1u);
  const std::vector<Bytes> packets = splitPackets(changed.parts[0].data);
  ASSERT_EQ(packets.size(), kLayers * kResolutions * kComponents);

  Bytes changes, data;
  std::vector<bool> done(packets.size());
  const auto take = [&](size_t layer, size_t resolution, size_t component) {
    const size_t number = (layer * kResolutions + resolution) * kComponents + component;
    if (!done[number]) append(data, packets[number]);
    done[number] = true;
  };
  append(changes, {0, 0, 0, 2, 2, 3, 1});  // resolutions 0 and 1 of 2 layers, RLCP
  for (size_t r = 0; r < 2; ++r) {
    for (size_t l = 0; l < 2; ++l) {
      for (size_t c = 0; c < 3; ++c) take(l, r, c);
    }
  }
  append(changes, {0, 1, 0, 1, 33, 3, 4});  // the first layer of components 1 and 2, CPRL
  for (size_t c = 1; c < 3; ++c) {
    for (size_t r = 0; r < 4; ++r) take(0, r, c);
  }
  append(changes, {0, 0, 0, 3, 4, 3, 0});  // everything, LRCP
  for (size_t l = 0; l < 3; ++l) {
    for (size_t r = 0; r < 4; ++r) {
      for (size_t c = 0; c < 3; ++c) take(l, r, c);
    }
  }
  changed.parts[0].data = data;
  Codestream inTile = changed;
  changed.headers.push_back({kPoc, changes});
  expectSamePicture(changed.bytes(), file);
  // In the header of a tile instead, where that of all tiles says something else.
  inTile.headers.push_back({kPoc, {0, 0, 0, 3, 4, 3, 2}});
  inTile.parts[0].headers = {{kPoc, Codestream::slice(changes, 0, 7)}, {kPoc, Codestream::slice(changes, 7, 21)}};
  expectSamePicture(inTile.bytes(), file);
}

// Bits of a packet's header that has no byte of ones.
class HeaderBits {
 public:
  void put(uint32_t value, int count) {
    while (count-- > 0) bits_.push_back((value >> count & 1) != 0);
  }
  Bytes bytes() const {
    Bytes bytes((bits_.size() + 7) / 8);
    for (size_t i = 0; i < bits_.size(); ++i) bytes[i / 8] |= static_cast<uint8_t>(bits_[i] ? 0x80 >> i % 8 : 0);
    return bytes;
  }

 private:
  std::vector<bool> bits_;
};

// One block without a wavelet, some of whose samples are raised above all bits of the others: the peer's encoder can
// only raise whole components.
TEST(Jpeg2kHeaders, RegionOfInterestIsLowered) {
  constexpr int kShift = 7, kPlanes = 8;  // one guard bit and an exponent of 8
  std::vector<int32_t> block(64);
  std::vector<int32_t> expected(64);
  for (int i = 0; i < 64; ++i) {
    const int32_t magnitude = i * 2 + 1;  // up to 127
    const bool negative = i % 3 == 0, inRegion = i % 5 < 2;
    expected[static_cast<size_t>(i)] = 128 + (negative ? -magnitude : magnitude);
    block[static_cast<size_t>(i)] = magnitude << (inRegion ? kShift : 0) | (negative ? INT32_MIN : 0);
  }
  J2kEncodeState* state = nullptr;
  ASSERT_EQ(zoriEncodeInitAlloc_JPEG2K(&state, {8, 8}), StatusOk);
  int32_t planes = 0, passes = 0, segments = 0, length = 1000, notFinished = 0;
  Bytes codeword(1000);
  ASSERT_EQ(zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(block.data(), 32, {8, 8}, state, SubbandLL, 31, 0, 0, 0, &planes,
                                                   &passes, &segments),
            StatusOk);
  ASSERT_EQ(zoriEncodeStoreBits_JPEG2K_1u(codeword.data(), &length, state, &notFinished), StatusOk);
  zoriEncodeFree_JPEG2K(state);
  codeword.resize(static_cast<size_t>(length));
  ASSERT_EQ(planes, kShift + 7);

  HeaderBits bits;
  bits.put(3, 2);                                             // a packet, which has the block
  bits.put(1, kPlanes + kShift - planes + 1);                 // planes of zeros, then a one
  bits.put(0xff80 | static_cast<uint32_t>(passes - 37), 16);  // from 37 to 164 passes
  bits.put(0xfe, 8);                                          // lengths of 3 + 7 bits
  bits.put(static_cast<uint32_t>(length), 10 + std::bit_width(static_cast<uint32_t>(passes)) - 1);
  Bytes packet = bits.bytes();
  append(packet, codeword);

  Codestream file(openjpeg::encode(
      deepPicture({8, 8}, 1, 8),
      [] {
        opj_cparameters_t parameters = openjpeg::defaults();
        parameters.numresolution = 1;
        return parameters;
      }(),
      true));
  file.header(kQcd).content = {0x20, kPlanes << 3};
  file.headers.push_back({kRgn, {0, 0, kShift}});
  file.parts[0].headers.clear();
  file.parts[0].data = packet;
  const std::vector<ComponentSamples> decoded = components(file.bytes());
  for (size_t i = 0; i < 64; ++i) EXPECT_EQ(decoded[0].samples[i], expected[i]) << i;
}

// The codestream of a file of the peer in boxes of one's own.
Bytes boxes(const Bytes& codestream, const std::vector<std::pair<std::string, Bytes>>& headerBoxes) {
  Bytes file;
  const auto add = [](Bytes& to, const std::string& type, const Bytes& content) {
    append32(to, content.size() + 8);
    to.insert(to.end(), type.begin(), type.end());
    append(to, content);
  };
  add(file, "jP  ", {0x0d, 0x0a, 0x87, 0x0a});
  add(file, "ftyp", {'j', 'p', '2', ' ', 0, 0, 0, 0, 'j', 'p', '2', ' '});
  Bytes header;
  for (const auto& [type, content] : headerBoxes) add(header, type, content);
  add(file, "jp2h", header);
  add(file, "uuid", Bytes(40));
  add(file, "jp2c", codestream);
  return file;
}

Bytes colorSpace(uint8_t number) { return {1, 0, 0, 0, 0, 0, number}; }

opj_cparameters_t small() {
  opj_cparameters_t parameters = openjpeg::defaults();
  parameters.numresolution = 2;
  return parameters;
}

TEST(Jpeg2kHeaders, PalettesBecomeColours) {
  DeepImage indexes(20, 10, 1);
  indexes.precision = 8;
  for (size_t i = 0; i < indexes.samples.size(); ++i) indexes.samples[i] = static_cast<uint16_t>(i % 5);
  const Bytes codestream = openjpeg::encode(indexes, small(), true);
  Bytes palette = {0, 4, 3, 7, 7, 7};
  for (uint8_t entry = 0; entry < 4; ++entry)
    append(palette, {entry, static_cast<uint8_t>(10 * entry), static_cast<uint8_t>(255 - entry)});
  // The channels in another order than the columns.
  const Bytes map = {0, 0, 1, 2, 0, 0, 1, 0, 0, 0, 1, 1};
  Image image;
  ASSERT_TRUE(jpeg2k::decode(boxes(codestream, {{"colr", colorSpace(16)}, {"pclr", palette}, {"cmap", map}}), {}, image)
                  .complete());
  ASSERT_EQ(image.channels, 3);
  for (int32_t x = 0; x < 5; ++x) {
    const int entry = std::min(x, 3);  // what is beyond the palette takes its last entry
    EXPECT_EQ(image.at(x, 0)[0], 255 - entry);
    EXPECT_EQ(image.at(x, 0)[1], entry);
    EXPECT_EQ(image.at(x, 0)[2], 10 * entry);
  }
  Bytes tooFar = map;
  tooFar[3] = 3;
  EXPECT_THROW(jpeg2k::decode(boxes(codestream, {{"pclr", palette}, {"cmap", tooFar}}), {}, image), examples::Error);
}

TEST(Jpeg2kHeaders, ChannelsAreOrderedAndOpacityIsLeftOut) {
  const DeepImage source = deepPicture({20, 10}, 4, 8);
  const Bytes codestream = openjpeg::encode(source, small(), true);
  // Opacity first, then blue, green and red.
  const Bytes definition = {0, 4, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 3, 0, 2, 0, 0, 0, 2, 0, 3, 0, 0, 0, 1};
  Image image;
  ASSERT_TRUE(
      jpeg2k::decode(boxes(codestream, {{"colr", colorSpace(16)}, {"cdef", definition}}), {}, image).complete());
  ASSERT_EQ(image.channels, 3);
  for (int32_t x = 0; x < 20; ++x) {
    for (int c = 0; c < 3; ++c) EXPECT_EQ(image.at(x, 5)[c], source.at(x, 5)[3 - c]);
  }
  ASSERT_TRUE(jpeg2k::decode(boxes(codestream, {{"colr", colorSpace(12)}}), {}, image).complete());
  EXPECT_EQ(image.channels, 4);
}

// A search of all definitions for each channel would not end.
TEST(Jpeg2kHeaders, AMillionChannelsAndDefinitions) {
  constexpr size_t kCount = 1'300'000;
  const Bytes codestream = openjpeg::encode(deepPicture({20, 10}, 1, 8), small(), true);
  Bytes map, definitions(2);
  for (size_t i = 0; i < kCount; ++i) {
    append(map, {0, 0, 1, 0});
    append(definitions, {0xff, 0xff, 0, 0, 0, 1});
  }
  Image image;
  EXPECT_TRUE(
      jpeg2k::decode(boxes(codestream, {{"pclr", {0, 1, 1, 7, 99}}, {"cmap", map}, {"cdef", definitions}}), {}, image)
          .complete());
  EXPECT_EQ(image.channels, 4);
}

// Components of half the width and height, in YCbCr: every sample is repeated, then converted.
TEST(Jpeg2kHeaders, SubSampledYcc) {
  Random random(5);
  PeerImage picture = painting(21, 13, 3, 8, random);
  for (size_t c : {1u, 2u}) picture.components[c].dx = picture.components[c].dy = 2;
  paint(picture, random);
  const Bytes codestream = openjpeg::encode(picture, small(), true);
  Image plain, rgb;
  ASSERT_TRUE(jpeg2k::decode(codestream, {}, plain).complete());
  ASSERT_TRUE(jpeg2k::decode(boxes(codestream, {{"colr", colorSpace(18)}}), {}, rgb).complete());
  for (int32_t y = 0; y < 13; ++y) {
    for (int32_t x = 0; x < 21; ++x) {
      const uint8_t* const pixel = plain.at(x, y);
      const int32_t half = y / 2 * 11 + x / 2;
      ASSERT_EQ(pixel[0], picture.components[0].samples[static_cast<size_t>(y * 21 + x)]);
      for (size_t c : {1u, 2u}) ASSERT_EQ(pixel[c], picture.components[c].samples[static_cast<size_t>(half)]);
      const double red = pixel[0] + 1.402 * (pixel[2] - 128), blue = pixel[0] + 1.772 * (pixel[1] - 128);
      EXPECT_NEAR(rgb.at(x, y)[0], std::clamp(red, 0.0, 255.0), 0.51);
      EXPECT_NEAR(rgb.at(x, y)[2], std::clamp(blue, 0.0, 255.0), 0.51);
    }
  }
}

}  // namespace
}  // namespace interop
