// A valid call of any export: memory of exactly the promised size behind every pointer, and values that fit it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "hostile/arena.h"
#include "hostile/exports.h"
#include "support/random.h"

namespace zorj::test {

// Something that a caller chooses: an argument, or an element of an array or record that an argument points to.
struct Place {
  std::string name;  // "srcStep", "roiSize.width", "pDst[1]", "pTile.x", "*pDstPosition"
  const Parameter* parameter;
  bool isPointer;
  Piece* target;    // what a pointer points into
  bool isSamples;   // which may lie at any address; else it is a C object, an array of pointers or the like
  size_t argument;  // its number, if `memory` is null
  uint8_t* memory = nullptr;
  size_t bytes = 0;
};

class Scene {
 public:
  // `size` is that of images and regions: even, and of whole blocks for the photo core.
  Scene(const Export& function, RoiSize size, Arena& arena);

  const std::vector<Place>& places() const { return places_; }
  Value get(const Place& place) const;
  void set(const Place& place, Value value);
  int call() const { return function_.call(arguments_.data()); }
  // An address at which there is no object, but memory enough for one.
  Value noObject() const { return valueOf(noObject_.data()); }
  // Brings all memory and all arguments back.
  void restore();

  // The argument or element of this name.
  const Place& place(const std::string& name) const;

 private:
  // Rows of samples with a border that is read.
  struct Region {
    size_t rows, rowBytes;
    size_t rowsAround = 0, bytesAround = 0;
  };

  void addParameter(const Parameter& parameter);
  void addPointer(const Parameter& parameter);
  void addPointers(const Parameter& parameter);
  Value addTarget(const Parameter& parameter, int index);
  void addElements(const Parameter& parameter, Piece& piece, const std::vector<std::string>& names, size_t bytes);

  Region regionOf(const Parameter& parameter, int index);
  Region imageRegion(const Parameter& parameter) const;
  Region mcuRegion(const Parameter& parameter, int index) const;
  Region blockRegion(const Parameter& parameter) const;
  Region waveletRegion(const Parameter& parameter) const;
  bool isSingleValue(const Parameter& parameter) const;
  void fill(const Parameter& parameter, uint8_t* data, size_t bytes);

  Value object(const std::string& type);
  Value encodeState();
  Value decodeState();
  const std::vector<uint8_t>& codedBytes();
  void encodeBlock();
  void encodeWith(const std::string& encoder);

  int32_t numberFor(const Parameter& parameter) const;
  int32_t firstNumber(const std::string& name) const;

  const Export& function_;
  const RoiSize size_;
  Arena& arena_;
  Random random_{2026};
  std::vector<Value> arguments_, initialArguments_;
  std::vector<Place> places_;
  std::vector<int32_t> steps_;              // of the images of the last pointer
  std::map<std::string, int32_t> lengths_;  // bytes behind each pointer
  std::vector<uint8_t> coded_;
  Piece& noObject_;
  int32_t planes_ = 0, passes_ = 0;
};

// The export of this name.
const Export& exportNamed(const std::string& name);

}  // namespace zorj::test
