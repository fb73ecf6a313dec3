// Every function of the library with any data and images of any size, at a level and beside the portable one: a valid
// call in memory that ends where it must.
#include "hostile/scene.h"
#include "support/fuzzer.h"

namespace zorj::fuzz {
namespace {

// Not every pattern of bits is a float to compute with.
void fillFloats(Input& input, uint8_t* bytes, size_t size) {
  std::vector<int16_t> numbers(size / sizeof(float));
  input.fill(numbers.data(), numbers.size());
  for (size_t i = 0; i < numbers.size(); ++i) {
    const float sample = static_cast<float>(numbers[i]) / 3;
    std::memcpy(bytes + i * sizeof sample, &sample, sizeof sample);
  }
}

void fillSamples(Input input, const test::Scene& scene) {
  for (const test::Place& place : scene.places()) {
    if (!place.target || !place.isSamples) continue;
    if (place.parameter->type == "float") {
      fillFloats(input, place.target->data(), place.target->size());
    } else {
      input.fill(place.target->data(), place.target->size());
    }
    input.byte();
  }
}

}  // namespace

void fuzz(Input& input) {
  chooseLevel(input);
  const auto& functions = test::exports();
  const test::Export& function =
      functions[static_cast<size_t>(input.between(0, static_cast<int>(functions.size()) - 1))];
  if (function.has("Direct")) return;  // it needs a marker behind the data; the fuzzers of Huffman coding put one there
  const int32_t unit = function.has("PCT") ? 16 : 2;
  const RoiSize size = {unit * input.between(1, 200 / unit), unit * input.between(1, 100 / unit)};
  test::Arena arena;
  test::Scene scene(function, size, arena);
  zorSetNumThreads(input.between(1, 3));
  sameAtPortableLevel([&] {
    scene.restore();
    fillSamples(input, scene);
    const int status = scene.call();
    std::vector<std::vector<uint8_t>> contents;
    for (const auto& piece : arena.pieces()) {
      if (!piece->isPrivate()) contents.emplace_back(piece->data(), piece->data() + piece->size());
    }
    return std::pair(status, contents);
  });
}

}  // namespace zorj::fuzz
