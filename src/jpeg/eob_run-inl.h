// End-of-band runs of the progressive process. Included by kernel files, once per target, inside the target's
// namespace.

// The run as it is while a block is encoded; the state learns of it by commit().
class EobRun {
 public:
  explicit EobRun(const HuffmanEncodeState& state)
      : blocks_(state.eobRun), held_(state.correctionBits), heldCount_(state.correctionCount) {}

  // Adds a block with nothing to code to the state's run. False, and nothing added, if the run is to be written first.
  static HWY_INLINE bool joinEmpty(HuffmanEncodeState& state) {
    if (state.eobRun >= kMaxBlocks - 1 || state.correctionCount > kMaxCorrections) return false;
    ++state.eobRun;
    return true;
  }

  // Writes the run, if there is one, and the correction bits of its blocks (T.81 Figure G.4).
  template <class Symbols>
  HWY_INLINE StatusCode put(Symbols& symbols) {
    if (blocks_ == 0) return StatusOk;
    if (const StatusCode status = putBlocks(symbols)) return status;
    if (const StatusCode status = putHeldBits(symbols)) return status;
    if (const StatusCode status = symbols.putCorrections(ownBits_, ownCount_)) return status;
    blocks_ = heldCount_ = ownCount_ = 0;
    return StatusOk;
  }

  // A block with nothing left to code but these correction bits joins the run. A run that cannot grow is written; where
  // that failed before, no block joins until it is done.
  template <class Symbols>
  HWY_INLINE StatusCode join(Symbols& symbols, uint64_t bits = 0, uint32_t count = 0) {
    if (isFull()) [[unlikely]] {
      if (const StatusCode status = put(symbols)) return status;
    }
    ++blocks_;
    ownBits_ = bits;
    ownCount_ = count;
    return isFull() ? put(symbols) : StatusOk;
  }

  HWY_INLINE void commit(HuffmanEncodeState& state) const {
    state.eobRun = blocks_;
    state.correctionCount = heldCount_;
    if (ownCount_ > 32) hold(state, ownBits_ >> 32, ownCount_ - 32);
    if (ownCount_ > 0) hold(state, ownBits_ & 0xFFFFFFFF, ownCount_ < 32 ? ownCount_ : 32);
  }

 private:
  static constexpr uint32_t kMaxBlocks = 32767;
  static constexpr uint32_t kMaxCorrections = 937;  // so that those of one more block find room among 1000
  static constexpr uint32_t kMaxCategory = 14;      // of the run's length

  HWY_INLINE bool isFull() const { return blocks_ >= kMaxBlocks || heldCount_ + ownCount_ > kMaxCorrections; }

  template <class Symbols>
  HWY_INLINE StatusCode putBlocks(Symbols& symbols) {
    uint32_t blocks = blocks_;
    if (blocks > kMaxBlocks) {
      const StatusCode status = symbols.putSymbol(kMaxCategory << 4, kMaxBlocks >> 1, kMaxCategory);
      if (status != StatusOk) return status;
      blocks -= kMaxBlocks;
    }
    const uint32_t category = static_cast<uint32_t>(std::bit_width(blocks)) - 1;
    if (category > kMaxCategory) return StatusHuffmanDataError;
    return symbols.putSymbol(category << 4, blocks & ((1u << category) - 1), category);
  }

  template <class Symbols>
  HWY_INLINE StatusCode putHeldBits(Symbols& symbols) const {
    for (uint32_t done = 0; done < heldCount_; done += 32) {
      const uint32_t count = heldCount_ - done < 32 ? heldCount_ - done : 32;
      const uint64_t bits = loadBigEndian64(held_ + done / 8) >> (64 - count);
      if (const StatusCode status = symbols.putCorrections(bits, count)) return status;
    }
    return StatusOk;
  }

  // Appends 1 to 32 bits to those the state holds: a string of bits, the first of a byte the most significant one.
  static HWY_INLINE void hold(HuffmanEncodeState& state, uint64_t bits, uint32_t count) {
    uint8_t* byte = state.correctionBits + state.correctionCount / 8;
    const uint32_t used = state.correctionCount % 8;
    const uint64_t begun = uint64_t{*byte} << 56 & ~(~uint64_t{0} >> used);
    storeBigEndian64(byte, begun | bits << (64 - used - count));
    state.correctionCount += count;
  }

  uint32_t blocks_;
  const uint8_t* held_;
  uint32_t heldCount_;
  uint64_t ownBits_ = 0;  // of the block that joined last, not held by the state yet
  uint32_t ownCount_ = 0;
};
