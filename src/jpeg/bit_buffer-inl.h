// What the fast encoders write to before the destination. Included by their kernel files, once per target, inside the
// target's namespace.

// Memory for the bytes of a BitBuffer: those of a block, and as many more as stores and copies may touch. It is no part
// of the BitBuffer, which the compiler can keep in registers for that.
struct BitBufferMemory {
  uint8_t bytes[320 + 64];
};

// Collects a few bits at a time without a branch. Bytes beyond the last may be touched.
class BitBuffer {
 public:
  // Begins with the first `count` bits of `pending`, at most 7.
  BitBuffer(BitBufferMemory& memory, uint64_t pending, uint32_t count)
      : bytes_(memory.bytes), next_(memory.bytes), accumulator_(pending), count_(count) {}

  // Appends at least one bit; the caller stores them before they exceed 63.
  HWY_INLINE void put(uint64_t bits, uint32_t count) {
    count_ += count;
    accumulator_ |= bits << (64 - count_);
  }
  // Moves whole bytes out of the accumulator, at most 7.
  HWY_INLINE void store() {
    storeBigEndian64(next_, accumulator_);
    next_ += count_ / 8;
    accumulator_ <<= count_ & ~7u;
    count_ &= 7;
  }

  const uint8_t* bytes() const { return bytes_; }
  size_t size() const { return static_cast<size_t>(next_ - bytes_); }
  uint64_t pending() const { return accumulator_; }
  uint32_t pendingCount() const { return count_; }

 private:
  const uint8_t* bytes_;
  uint8_t* next_;
  uint64_t accumulator_;  // left-aligned
  uint32_t count_;
};

// Copies `count` bytes and puts a zero behind each 0xFF. The source may be read up to 64 bytes further, the destination
// is written exactly. Returns the end of what was written.
inline uint8_t* copyStuffedByBytes(uint8_t* dst, const uint8_t* src, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    *dst++ = src[i];
    if (src[i] == 0xFF) *dst++ = 0;
  }
  return dst;
}

template <class Word>
HWY_INLINE void copyWord(uint8_t* dst, const uint8_t* src) {
  std::memcpy(dst, src, sizeof(Word));
}
// The first and the last word of `count` bytes; they may overlap.
template <class Word>
HWY_INLINE void copyEnds(uint8_t* dst, const uint8_t* src, size_t count) {
  Word first, last;
  std::memcpy(&first, src, sizeof first);
  std::memcpy(&last, src + count - sizeof last, sizeof last);
  std::memcpy(dst, &first, sizeof first);
  std::memcpy(dst + count - sizeof last, &last, sizeof last);
}

HWY_INLINE uint8_t* copyStuffed(uint8_t* dst, const uint8_t* src, size_t count) {
#if ZORJ_SIMD
#if HWY_TARGET == HWY_AVX3
  const hn::ScalableTag<uint8_t> d;
#else
  const hn::Full128<uint8_t> d;
#endif
  const size_t lanes = hn::Lanes(d);
  for (;;) {
    const size_t now = HWY_MIN(count, lanes);
    const auto chunk = hn::LoadU(d, src);
    const auto inside = hn::FirstN(d, now);
    if (!hn::AllFalse(d, hn::And(inside, hn::Eq(chunk, hn::Set(d, 0xFF))))) [[unlikely]] {
      dst = copyStuffedByBytes(dst, src, now);
    } else {
#if HWY_TARGET == HWY_AVX3
      hn::BlendedStore(chunk, inside, d, dst);
#else
      if (now == lanes) {
        hn::StoreU(chunk, d, dst);
      } else if (now >= 8) {
        copyEnds<uint64_t>(dst, src, now);
      } else if (now >= 4) {
        copyEnds<uint32_t>(dst, src, now);
      } else {
        for (size_t i = 0; i < now; ++i) dst[i] = src[i];
      }
#endif
      dst += now;
    }
    if (count <= lanes) return dst;
    count -= lanes;
    src += lanes;
  }
#else
  for (; count >= 8 && !hasByteFF(loadBigEndian64(src)); count -= 8, src += 8, dst += 8)
    copyEnds<uint64_t>(dst, src, 8);
  return copyStuffedByBytes(dst, src, count);
#endif
}

// Pending bits as the state holds them, and left-aligned as the buffer does.
HWY_INLINE uint64_t pendingBits(const HuffmanEncodeState& state) { return uint64_t{state.accumulator} << 40; }

// What the buffer holds goes to the destination and the state. False, with nothing changed, if room might lack.
HWY_INLINE bool commit(const BitBuffer& buffer, const Destination& dst, HuffmanEncodeState& state) {
  const size_t size = buffer.size();
  if (dst.room() < static_cast<int32_t>(2 * size)) return false;
  dst.position = static_cast<int32_t>(copyStuffed(dst.bytes + dst.position, buffer.bytes(), size) - dst.bytes);
  const uint32_t lastByte = size > 0 ? buffer.bytes()[size - 1] : state.accumulator >> 24;
  state.accumulator = static_cast<uint32_t>(buffer.pending() >> 40) | lastByte << 24;
  state.reserved = 0;
  state.bitCount = buffer.pendingCount();
  return true;
}
