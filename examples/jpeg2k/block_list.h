// All code-blocks of an image, coded on several threads.
#pragma once

#include <span>
#include <vector>

#include "jpeg2k/block_coder.h"
#include "jpeg2k/encode_settings.h"
#include "jpeg2k/layer_allocation.h"
#include "jpeg2k/packet_writer.h"
#include "jpeg2k/tile_transform.h"

namespace examples::jpeg2k {

// T is the type of coefficients.
template <class T>
class BlockList {
 public:
  // Fills in where in the list the blocks of the tiles' precincts are.
  BlockList(const EncodeSettings& settings, std::span<TileBlocks> tiles, const TileTransform<T>& transform,
            const EncodeOptions& options);

  // Codes all passes of all blocks.
  void codeEverything();
  // Codes the passes that can be needed for a file of so many bytes, or for a squared error in the picture.
  void codeForBytes(int64_t bytes);
  void codeForError(double squaredError);
  // Codes further passes of blocks that the slope has turned out to need; false if there are none.
  bool codeFurther(double slope);

  std::span<const CodedBlock> blocks() const { return coded_; }
  // Needed by the coefficients, once they are coded.
  int32_t guardBits(const Quantization& quantization) const;
  // The squared error that leaving out all blocks makes; known when they are coded for an error.
  double error() const;

 private:
  void addBlocks(const EncodeSettings& settings, size_t tile, TileBlocks& blocks, const TileTransform<T>& transform);
  std::vector<size_t> sample() const;
  double shareOf(const std::vector<size_t>& sample) const;
  void code(const std::vector<size_t>& numbers);
  template <class FindSlope>
  void codeRest(const std::vector<size_t>& some, const FindSlope& findSlope);
  std::vector<size_t> all() const;

  int32_t threads_;
  std::vector<BlockJob<T>> jobs_;
  std::vector<int32_t> bands_;  // the number of each job's subband
  std::vector<CodedBlock> coded_;
  std::vector<BlockCoder> coders_;  // of each thread
};

}  // namespace examples::jpeg2k
