#include "hostile/scene.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace zorj::test {
namespace {

bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

[[noreturn]] void stop(const std::string& why) {
  std::fprintf(stderr, "%s\n", why.c_str());
  std::abort();
}

// A list that gives each of 256 symbols a code: 252 of 8 bits and 4 of 9.
struct CodeList {
  uint8_t bits[16] = {0, 0, 0, 0, 0, 0, 0, 252, 4};
  uint8_t values[256];
  CodeList() {
    for (unsigned i = 0; i < 256; ++i) values[i] = static_cast<uint8_t>(i * 37 + 11);
  }
};

// Coefficients that every coder takes: up to 9 bits, most of them 0.
int16_t coefficient(size_t i) { return static_cast<int16_t>(i % 5 == 0 ? static_cast<int>(i * 97 % 601) - 300 : 0); }

// Channels of the pixels of the source or the destination, from a name like ..._C3P3R.
size_t channels(const std::string& name, bool ofSource) {
  const std::string layout = name.substr(name.rfind('_') + 1);
  const bool hasTwo = layout.size() >= 4 && (layout[2] == 'C' || layout[2] == 'P');
  const size_t at = hasTwo && !ofSource ? 2 : 0;
  return layout[at] == 'C' ? static_cast<size_t>(layout[at + 1] - '0') : 1;
}

}  // namespace

const Export& exportNamed(const std::string& name) {
  for (const Export& function : exports()) {
    if (function.name == name) return function;
  }
  stop("no export " + name);
}

Scene::Scene(const Export& function, RoiSize size, Arena& arena)
    : function_(function), size_(size), arena_(arena), noObject_(arena.add("no object", 4096)) {
  for (const Parameter& parameter : function.parameters) addParameter(parameter);
  initialArguments_ = arguments_;
  arena_.keep();
}

Value Scene::get(const Place& place) const {
  if (!place.memory) return arguments_[place.argument];
  Value value = 0;
  std::memcpy(&value, place.memory, place.bytes);
  return value;
}

void Scene::set(const Place& place, Value value) {
  if (place.memory) {
    std::memcpy(place.memory, &value, place.bytes);
  } else {
    arguments_[place.argument] = value;
  }
}

void Scene::restore() {
  arena_.restore();
  arguments_ = initialArguments_;
}

const Place& Scene::place(const std::string& name) const {
  for (const Place& place : places_) {
    if (place.name == name) return place;
  }
  stop(function_.name + " has no " + name);
}

void Scene::addParameter(const Parameter& parameter) {
  const size_t argument = arguments_.size();
  arguments_.push_back(0);
  const auto add = [&](bool isPointer, Piece* target, bool isSamples, Value value) {
    places_.push_back({std::string(parameter.name), &parameter, isPointer, target, isSamples, argument});
    arguments_[argument] = value;
  };
  switch (parameter.kind) {
    case Kind::kValue:
      return add(false, nullptr, false, numberFor(parameter));
    case Kind::kStep:
      return add(false, nullptr, false, steps_.front());
    case Kind::kObject:
      return add(true, nullptr, false, object(std::string(parameter.type)));
    case Kind::kCreated: {
      Piece& piece = arena_.add(std::string(parameter.name), sizeof(void*));
      piece.allowAll();
      piece.makePrivate();
      return add(true, &piece, false, valueOf(piece.data()));
    }
    case Kind::kPointer: {
      const Value value = addTarget(parameter, 0);
      const bool isObject =
          isSingleValue(parameter) || contains(parameter.name, "Statistics") || parameter.type == "TileRect";
      return add(true, arena_.pieces().back().get(), !isObject, value);
    }
    case Kind::kPointers:
    case Kind::kValues: {
      const bool pointers = parameter.kind == Kind::kPointers;
      const int count = parameter.count ? parameter.count : 4;
      const size_t bytes = pointers ? sizeof(void*) : parameter.elementSize;
      Piece& piece = arena_.add(std::string(parameter.name), bytes * static_cast<size_t>(count));
      if (pointers) piece.makePrivate();  // addresses differ from run to run
      add(true, &piece, false, valueOf(piece.data()));
      const std::vector<int32_t> steps = std::exchange(steps_, {});
      for (int i = 0; i < count; ++i) {
        Place element{std::string(parameter.name) + "[" + std::to_string(i) + "]",
                      &parameter,
                      pointers,
                      nullptr,
                      false,
                      argument};
        element.memory = piece.data() + static_cast<size_t>(i) * bytes;
        element.bytes = bytes;
        if (!pointers) {
          set(element, steps[static_cast<size_t>(i)]);
        } else if (parameter.elementSize == 0) {
          set(element, object(std::string(parameter.type)));
        } else {
          set(element, addTarget(parameter, i));
          element.target = arena_.pieces().back().get();
          element.isSamples = true;
        }
        places_.push_back(element);
      }
    }
  }
}

// The memory behind a pointer to samples, values or a record.
Value Scene::addTarget(const Parameter& parameter, int index) {
  const Region region = regionOf(parameter, index);
  constexpr size_t kPadding = 16;
  if (index == 0) steps_.clear();
  const size_t rows = region.rows + 2 * region.rowsAround, rowBytes = region.rowBytes + 2 * region.bytesAround;
  const size_t step = rowBytes + (rows > 1 ? kPadding : 0);
  // Where a step may be negative, a row can lie a few bytes before the one above.
  const size_t slack = contains(function_.name, "Texture") || contains(function_.name, "PCT") ? 64 + region.rows : 1;
  const std::string name = std::string(parameter.name) + (parameter.count ? "[" + std::to_string(index) + "]" : "");
  Piece& piece = arena_.add(name, step * (rows - 1) + rowBytes, slack);
  if (parameter.name == "pBuffer" || parameter.name == "pState") piece.makePrivate();
  const size_t origin = region.rowsAround * step + region.bytesAround;
  // What is written is also read before in samples in place, the rows pA to pE, counters, and blocks that are refined.
  const bool hasContents = parameter.isRead || contains(parameter.name, "Src") || parameter.name.size() == 2 ||
                           contains(parameter.name, "Raw") || contains(parameter.name, "Statistics") ||
                           isSingleValue(parameter) || function_.has("DecodeHuffman8x8");
  for (size_t y = 0; y < rows && hasContents; ++y) fill(parameter, piece.data() + y * step, rowBytes);
  for (size_t y = 0; y < region.rows && !parameter.isRead; ++y) piece.allow(origin + y * step, region.rowBytes);
  steps_.push_back(static_cast<int32_t>(step));
  lengths_[std::string(parameter.name)] = static_cast<int32_t>(piece.size());
  if (parameter.type == "TileRect") {
    addElements(parameter, piece, {"pTile.x", "pTile.y", "pTile.width", "pTile.height"}, sizeof(int32_t));
  } else if (isSingleValue(parameter) && parameter.elementSize < 8) {
    addElements(parameter, piece, {"*" + std::string(parameter.name)}, parameter.elementSize);
  }
  return valueOf(piece.data() + origin);
}

void Scene::addElements(const Parameter& parameter, Piece& piece, const std::vector<std::string>& names, size_t bytes) {
  for (size_t i = 0; i < names.size(); ++i) {
    places_.push_back({names[i], &parameter, false, nullptr, false, 0, piece.data() + i * bytes, bytes});
  }
}

bool Scene::isSingleValue(const Parameter& parameter) const {
  constexpr std::string_view kNames =
      " pSize pNbp pNPasses pNSegments pPlane pRate pLen pDist pNotFinished pErrorPlane pMarker pLastDC pDstLen pSegLen"
      " pSrcPosition pDstPosition pSrcBitPosition pDstBitPosition pPrefetchedBits pPrefetchedCount ";
  return contains(kNames, " " + std::string(parameter.name) + " ");
}

Scene::Region Scene::regionOf(const Parameter& parameter, int index) {
  const std::string_view name = parameter.name;
  const size_t element = parameter.elementSize, width = static_cast<size_t>(size_.width);
  if (isSingleValue(parameter) || parameter.type == "TileRect") return {1, element};
  if (name == "pBits") return {1, 16};
  if (name == "pValues" || contains(name, "Statistics")) return {1, 256 * element};
  if (name == "pBuffer") {
    const TileRect tile = {0, 0, size_.width, size_.height};
    int32_t bytes = 0;
    const Value arguments[] = {valueOf(&tile), valueOf(&bytes)};
    exportNamed("zoriWTGetBufSize_" + function_.name.substr(sizeof("zoriWTFwd_") - 1)).call(arguments);
    return {1, static_cast<size_t>(bytes)};
  }
  if (name == "pState") {
    int32_t bytes = 0;
    zoriDecodeGetBufSize_JPEG2K(size_, &bytes);
    return {1, static_cast<size_t>(bytes)};
  }
  const bool isCoded = function_.has("1u") || function_.has("Bits") || function_.has("Step_");
  const bool decodes = function_.has("Decode") || function_.has("Unpack");
  if (isCoded && element == 1 && decodes && contains(name, "pS")) return {1, codedBytes().size()};
  if (isCoded && element == 1 && !decodes && name == "pDst") {
    if (function_.has("Huffman")) return {1, 16 * width + 400};
    return {1, function_.has("Pack") ? width + (width + 127) / 128 : 8 * width * static_cast<size_t>(size_.height)};
  }
  if (function_.has("One_JPEG")) return {1, element};
  if (function_.has("_MCU_")) return mcuRegion(parameter, index);
  if (function_.has("8x8") && function_.has("JPEG")) return blockRegion(parameter);
  if (contains(name, "Table")) return {1, 64 * element};
  if (function_.has("zoriWT")) return waveletRegion(parameter);
  if (function_.has("PCT")) {
    unsigned columns = 0, rows = 0;  // 8x16 and the like
    if (std::sscanf(function_.name.c_str(), "zoriPCT%*3s%ux%u", &columns, &rows) != 2) return imageRegion(parameter);
    return {rows, columns * element};
  }
  if (function_.has("Row")) {
    const bool isDst = name == "pDst";
    return {1, element * (isDst && function_.has("SampleDown") ? (width + 1) / 2
                          : isDst && function_.has("SampleUp") ? 2 * width
                                                               : width)};
  }
  return imageRegion(parameter);
}

Scene::Region Scene::imageRegion(const Parameter& parameter) const {
  const auto width = static_cast<size_t>(size_.width), height = static_cast<size_t>(size_.height);
  const bool isSource = contains(parameter.name, "Src");
  if (function_.has("Texture") && function_.has(isSource ? "Decode" : "Encode")) {
    return {1, (width + 3) / 4 * ((height + 3) / 4) * (function_.has("DXT1") ? 8 : 16)};
  }
  const size_t pixel =
      parameter.elementSize * (parameter.kind == Kind::kPointers || function_.has("555") || function_.has("565")
                                   ? 1
                                   : channels(function_.name, isSource));
  if (isSource && function_.has("SampleUpH2V1")) return {height, (width + 1) / 2, 0, 1};
  return {height, width * pixel};
}

// Interleaved pixels, or the blocks of one component.
Scene::Region Scene::mcuRegion(const Parameter& parameter, int index) const {
  const size_t width = function_.has("444") ? 8 : 16, height = function_.has("411") ? 16 : 8;
  if (parameter.kind == Kind::kPointers) {
    return {1, parameter.elementSize * (index % 3 == 0 ? width * height : 64)};
  }
  const bool packed = function_.has("555") || function_.has("565");
  const size_t samples = packed ? 1 : channels(function_.name, contains(parameter.name, "Src"));
  return {height, width * samples * parameter.elementSize};
}

// A block of 64 values, or of the samples of an image.
Scene::Region Scene::blockRegion(const Parameter& parameter) const {
  const auto at = std::find_if(function_.parameters.begin(), function_.parameters.end(),
                               [&](const Parameter& other) { return other.name == parameter.name; });
  const bool stepped = at + 1 != function_.parameters.end() && at[1].kind == Kind::kStep;
  const size_t rows = function_.has("To2x2") ? 2 : function_.has("To4x4") ? 4 : 8;
  return stepped ? Region{rows, rows * parameter.elementSize} : Region{1, 64 * parameter.elementSize};
}

Scene::Region Scene::waveletRegion(const Parameter& parameter) const {
  const auto width = static_cast<size_t>(size_.width), height = static_cast<size_t>(size_.height);
  const size_t element = parameter.elementSize;
  if (function_.has("Lift")) return {1, width * element};
  if (parameter.kind == Kind::kPointers) return {height / 2, width / 2 * element};
  const bool isColumn = function_.has("Col_"), isRow = function_.has("Row_");
  if (!isColumn && !isRow) return {height, width * element};
  const bool isBand = parameter.name == "pLow" || parameter.name == "pHigh";
  const size_t around = !parameter.isRead ? 0 : (isBand ? 1u : 2u) * (function_.has("D97") ? 2 : 1);
  const size_t scale = isBand ? 1 : 2;
  return isRow ? Region{height, scale * width * element, 0, around * element}
               : Region{scale * height, width * element, around, 0};
}

void Scene::fill(const Parameter& parameter, uint8_t* data, size_t bytes) {
  const std::string_view name = parameter.name;
  const CodeList list;
  if (parameter.type == "TileRect") {
    const TileRect tile = {1, 0, size_.width, size_.height};
    std::memcpy(data, &tile, sizeof tile);
  } else if (name == "pBits") {
    std::memcpy(data, list.bits, bytes);
  } else if (name == "pValues") {
    std::memcpy(data, list.values, bytes);
  } else if (name == "pDstLen" || name == "pSegLen") {
    const int32_t length = lengths_[name == "pDstLen" ? "pDst" : "pSrc"];
    std::memcpy(data, &length, sizeof length);
  } else if (isSingleValue(parameter)) {
    std::memset(data, 0, bytes);
  } else if (contains(name, "Statistics")) {
    std::memset(data, 0, bytes);
    for (size_t i = 0; i < bytes && parameter.isRead; i += 4) data[i] = static_cast<uint8_t>(i * 7 % 50 + 1);
  } else if (parameter.isRead && bytes == coded_.size() && parameter.elementSize == 1) {
    std::memcpy(data, coded_.data(), bytes);
  } else if (function_.has("Huffman") && parameter.elementSize == 2) {
    const int unknown = parameter.isRead ? 1 : 2;  // a block to be refined lacks the lowest bit
    for (size_t i = 0; i < bytes / 2; ++i) {
      const auto value = static_cast<int16_t>(coefficient(i) / unknown * unknown);
      std::memcpy(data + 2 * i, &value, sizeof value);
    }
  } else if (parameter.type == "float") {
    for (size_t i = 0; i < bytes / 4; ++i) {
      const float value = static_cast<float>(random_.between(-100000, 100000)) / 64;
      std::memcpy(data + 4 * i, &value, sizeof value);
    }
  } else {
    for (size_t i = 0; i < bytes; ++i) data[i] = static_cast<uint8_t>(random_.next());
    if (contains(name, "Raw")) std::replace(data, data + bytes, uint8_t{0}, uint8_t{1});
  }
}

Value Scene::object(const std::string& type) {
  const CodeList list;
  const auto create = [&](auto allocate, auto* nothing) {
    auto* created = nothing;
    if (allocate(&created) != StatusOk) stop("cannot make a " + type);
    return valueOf(created);
  };
  if (type == "HuffmanEncodeSpec") {
    return create([&](auto** p) { return zoriEncodeHuffmanSpecInitAlloc_JPEG_8u(list.bits, list.values, p); },
                  static_cast<HuffmanEncodeSpec*>(nullptr));
  }
  if (type == "HuffmanDecodeSpec") {
    return create([&](auto** p) { return zoriDecodeHuffmanSpecInitAlloc_JPEG_8u(list.bits, list.values, p); },
                  static_cast<HuffmanDecodeSpec*>(nullptr));
  }
  if (type == "HuffmanEncodeState") {
    return create([](auto** p) { return zoriEncodeHuffmanStateInitAlloc_JPEG_8u(p); },
                  static_cast<HuffmanEncodeState*>(nullptr));
  }
  if (type == "HuffmanDecodeState") {
    return create([](auto** p) { return zoriDecodeHuffmanStateInitAlloc_JPEG_8u(p); },
                  static_cast<HuffmanDecodeState*>(nullptr));
  }
  return type == "J2kEncodeState" ? encodeState() : decodeState();
}

// An encoder of code-blocks that has stored one.
Value Scene::encodeState() {
  J2kEncodeState* state = nullptr;
  zoriEncodeInitAlloc_JPEG2K(&state, size_);
  std::vector<int32_t> samples(static_cast<size_t>(size_.width) * static_cast<size_t>(size_.height));
  for (int32_t& sample : samples) sample = static_cast<int32_t>(static_cast<uint32_t>(random_.next()));
  int32_t segments = 0, notFinished = 1;
  coded_.resize(samples.size() * 8);
  auto length = static_cast<int32_t>(coded_.size());
  if (zoriEncodeLoadCodeBlock_JPEG2K_32s_C1R(samples.data(), size_.width * 4, size_, state, SubbandHL, 31, 0, 0, 0,
                                             &planes_, &passes_, &segments) != StatusOk ||
      (!function_.has("StoreBits") &&
       zoriEncodeStoreBits_JPEG2K_1u(coded_.data(), &length, state, &notFinished) != StatusOk)) {
    stop("cannot encode a code-block");
  }
  coded_.resize(static_cast<size_t>(length));
  return valueOf(state);
}

// A decoder of code-blocks that is attached to samples of its own.
Value Scene::decodeState() {
  Piece& samples = arena_.add("attached samples", static_cast<size_t>(size_.width * size_.height) * sizeof(int32_t), 0);
  samples.allowAll();
  J2kDecodeState* state = nullptr;
  zoriDecodeCBProgrInitAlloc_JPEG2K(&state, size_);
  if (zoriDecodeCBProgrAttach_JPEG2K_32s_C1R(reinterpret_cast<int32_t*>(samples.data()), size_.width * 4, size_, state,
                                             SubbandHL, planes_, 0) != StatusOk ||
      zoriDecodeCBProgrSetPassCounter_JPEG2K(passes_, state) != StatusOk) {
    stop("cannot attach a code-block");
  }
  return valueOf(state);
}

// What a decoder of this export's kind is to read: made by the encoder of that kind.
const std::vector<uint8_t>& Scene::codedBytes() {
  if (!coded_.empty()) return coded_;
  if (function_.has("JPEG2K")) {
    zoriEncodeFree_JPEG2K(pointerOf<J2kEncodeState>(encodeState()));
    return coded_;
  }
  std::string encoder = function_.name;
  for (const auto& [from, to] : {std::pair("Decode", "Encode"),
                                 {"Unpack", "Pack"},
                                 {"_Direct", ""},
                                 {"1u16s_C1P4", "16s1u_P4C1"},
                                 {"1u16s_C1", "16s1u_C1"}}) {
    if (const size_t at = encoder.find(from); at != std::string::npos) encoder.replace(at, std::strlen(from), to);
  }
  encodeWith(encoder);
  return coded_;
}

void Scene::encodeWith(const std::string& encoder) {
  Arena arena;
  Scene scene(exportNamed(encoder), size_, arena);
  int status = scene.call();
  if (status == StatusOk && function_.has("Huffman")) {
    scene.set(scene.place("flush"), 1);
    status = scene.call();
  }
  if (status != StatusOk) stop("cannot encode with " + encoder);
  const auto* bytes = pointerOf<const uint8_t>(scene.get(scene.place("pDst")));
  coded_.assign(bytes, bytes + scene.get(scene.place("*pDstPosition")));
  // What must be readable behind the data.
  if (function_.has("Direct")) coded_.insert(coded_.end(), 4, 0);
  if (function_.has("Unpack")) coded_.push_back(0);
}

int32_t Scene::numberFor(const Parameter& parameter) const {
  const std::string_view name = parameter.name;
  if (contains(name, ".width")) {
    return name == "srcRoiSize.width" && function_.has("SampleUpH2V1") ? (size_.width + 1) / 2 : size_.width;
  }
  if (contains(name, ".height")) return size_.height;
  if (name == "width" || name == "srcWidth" || name == "samples") return size_.width;
  if (name == "height") return size_.height;
  if (name == "srcLength") return lengths_.at("pSrc") - function_.has("Unpack");
  if (name == "dstLength") {
    return lengths_.contains("pDst") ? lengths_.at("pDst") : size_.width;
  }
  if (name == "segLen") return lengths_.at("pSegment");
  if (name == "nbp") return planes_;
  if (name == "nPasses") return passes_;
  static const std::map<std::string, int32_t> kNumbers = {{"components", 4},
                                                          {"Ss", 1},
                                                          {"Se", 63},
                                                          {"Al", 0},
                                                          {"flush", 0},
                                                          {"precision", 8},
                                                          {"pointTransform", 0},
                                                          {"predictor", 4},
                                                          {"phase", 0},
                                                          {"qualityFactor", 75},
                                                          {"pass", 1},
                                                          {"segment", 0},
                                                          {"subband", SubbandHL},
                                                          {"nSegments", 1},
                                                          {"magnitudeBits", 31},
                                                          {"termMode", 0},
                                                          {"reserved", 0},
                                                          {"flags", 0}};
  const auto found = kNumbers.find(std::string(name));
  if (found == kNumbers.end()) stop("what is " + function_.name + "'s " + std::string(name) + "?");
  return found->second;
}

}  // namespace zorj::test
