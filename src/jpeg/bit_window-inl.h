// The 64-bit window through which the fast decoders read. Included by their kernel files, once per target, inside the
// target's namespace.

// Reads like BitReader and leaves the same position and state behind, though it reads further ahead: it keeps count of
// how much further.
class BitWindow {
 public:
  // No marker may be pending.
  BitWindow(const uint8_t* next, const uint8_t* end, const HuffmanDecodeState& state)
      : next_(next),
        safe_(findSafe(next, end)),
        bits_((uint64_t{state.bitBuffer} << 32) << (32 - state.bitCount)),
        count_(state.bitCount),
        end_(end) {}

  // Fills the window with at least kFilled bits. False when a marker, a fill byte or the end of the source comes first.
  static constexpr ptrdiff_t kFilled = 54;
  HWY_INLINE bool refill() {
    if (next_ > safe_) [[unlikely]] {
      safe_ = findSafe(next_, end_);
      if (next_ > safe_) return fillByBytes();
    }
    // Of the last byte only a part may fit: it is read again next time.
    bits_ |= loadBigEndian64(next_) >> count_;
    const ptrdiff_t bytes = (count_ ^ 63) >> 3;
    next_ += bytes;
    count_ += 8 * bytes;
    ahead_ += 8 * bytes;
    return true;
  }

  HWY_INLINE size_t peekByte() const { return static_cast<size_t>(bits_ >> 56); }
  // The entry of the next code, which is (length << 16) | symbol, or 0 if it is none of the lengths looked for. Of up
  // to 8 bits; `lookup` is the table's fastLookup.
  HWY_INLINE uint32_t peek(const TableEntry* lookup) const { return std::bit_cast<uint32_t>(lookup[peekByte()]); }
  // Of 9 to 16 bits.
  HWY_INLINE uint32_t peekLong(const HuffmanDecodeSpec& spec) const {
    return findLongCode(spec, static_cast<uint32_t>(bits_ >> 48));
  }

  // A code of up to 8 bits.
  HWY_INLINE void consumeShort(uint32_t length) {
    require(kFastBits);
    consume(length);
  }
  HWY_INLINE void consumeLong(uint32_t length) {
    require(kFastBits);
    require(kFastBits + 1);
    // Bit by bit: the buffer is filled again when it is empty.
    if (count_ - ahead_ < static_cast<ptrdiff_t>(length)) ahead_ -= 32;
    consume(length);
  }
  // The value of category `size`, 0 to 15, from its extra bits.
  HWY_INLINE int32_t takeExtraBits(uint32_t size) {
    const int32_t value = peekExtraBits(0, size);
    require(static_cast<ptrdiff_t>(size));
    consume(size);
    return value;
  }
  // The same behind `skipped` bits, without consuming it.
  HWY_INLINE int32_t peekExtraBits(uint32_t skipped, uint32_t size) const {
    const uint64_t next = bits_ << skipped;
    const auto bits = static_cast<uint32_t>(next >> 1 >> (63 - size));
    // Signs cannot be predicted: a mask instead of a branch.
    const auto negative = static_cast<uint32_t>(static_cast<int64_t>(~next) >> 63);
    return static_cast<int32_t>(bits - (negative & ((1u << size) - 1)));
  }
  // Two short codes with their extra bits, `bits` of them: the second code begins at `second`, less than 8, and its
  // extra bits at `extraBitsAt`.
  HWY_INLINE void consumePair(uint32_t second, uint32_t extraBitsAt, uint32_t bits) {
    // BitReader fills its buffer once at most: at the first of these places where it holds too few.
    const ptrdiff_t before = ahead_;
    requireIf(before, extraBitsAt, bits);
    requireIf(before, second, second + kFastBits);
    requireIf(before, 0, kFastBits);
    consume(bits);
  }
  HWY_INLINE void consume(uint32_t count) {
    bits_ <<= count;
    count_ -= static_cast<ptrdiff_t>(count);
  }

  // Leaves behind what BitReader would. Returns where it would read on; null if that takes bytes which are not there.
  HWY_INLINE const uint8_t* finish(const uint8_t* start, HuffmanDecodeState& state) const {
    if (stuffed_ != 0 || ahead_ < 0) [[unlikely]] {
      BitWindow copy = *this;
      return copy.finishByBytes(start, state);
    }
    const uint8_t* const next = next_ - (ahead_ >> 3);
    const ptrdiff_t bytes = next - start, appended = HWY_MIN(bytes, ptrdiff_t{4});
    const uint64_t word = loadBigEndian32(next - appended);
    state.bitBuffer = static_cast<uint32_t>(uint64_t{state.bitBuffer} << 8 * appended | word >> (32 - 8 * appended));
    state.reserved = bytes == 0 ? state.reserved : 0;
    state.bitCount = static_cast<int32_t>(count_ - ahead_);
    return next;
  }

 private:
  // BitReader fills its buffer to 25 to 32 bits where it holds fewer than it needs.
  HWY_INLINE void require(ptrdiff_t needed) { require(needed, count_); }
  // The same when the window holds so many bits.
  HWY_INLINE void require(ptrdiff_t needed, ptrdiff_t count) {
    const ptrdiff_t aheadOfFilled = (count - 25) & ~ptrdiff_t{7};
    ahead_ = ahead_ > count - needed ? aheadOfFilled : ahead_;
  }

  // The same where so many bits are consumed, with what was `ahead` then; `needed` is counted from here.
  HWY_INLINE void requireIf(ptrdiff_t ahead, uint32_t consumed, uint32_t needed) {
    ptrdiff_t aheadOfFilled = (count_ - static_cast<ptrdiff_t>(consumed) - 25) & ~ptrdiff_t{7};
    __asm__("" : "+r"(aheadOfFilled));  // computed in any case: GCC else makes a branch of it, which is hard to predict
    ahead_ = ahead > count_ - static_cast<ptrdiff_t>(needed) ? aheadOfFilled : ahead_;
  }

  // The last place before the next 0xFF or the end from which eight bytes can be read; before `next` if there is none.
  static HWY_INLINE const uint8_t* findSafe(const uint8_t* next, const uint8_t* end) {
    const ptrdiff_t left = end - next;
#if ZORJ_SIMD
    const hn::ScalableTag<uint8_t> d;
    constexpr ptrdiff_t kLanes = HWY_LANES(uint8_t);
    if (left >= kLanes) [[likely]] {
      uint8_t found[8] = {};
      hn::StoreMaskBits(d, hn::Eq(hn::LoadU(d, next), hn::Set(d, 0xFF)), found);
      const uint64_t bits =
          loadUnaligned(reinterpret_cast<const uint64_t*>(found)) | (kLanes < 64 ? uint64_t{1} << (kLanes % 64) : 0);
      return next + std::countr_zero(bits) - 8;
    }
#endif
    return left >= 8 && !hasByteFF(loadBigEndian64(next)) ? next : next - 1;
  }

  // On a copy, so that the window itself stays in registers.
  HWY_INLINE bool fillByBytes() {
    BitWindow copy = *this;
    copy.appendByBytes();
    *this = copy;
    return count_ >= kFilled;
  }
  HWY_NOINLINE void appendByBytes() {
    while (count_ < 56 && next_ < end_) {
      const uint8_t byte = *next_;
      if (byte == 0xFF) {
        if (end_ - next_ < 2 || next_[1] != 0) break;
        ++next_;
        ++stuffed_;
      }
      ++next_;
      bits_ |= uint64_t{byte} << (56 - count_);
      count_ += 8;
      ahead_ += 8;
    }
  }

  HWY_NOINLINE const uint8_t* finishByBytes(const uint8_t* start, HuffmanDecodeState& state) {
    if (ahead_ < 0) appendByBytes();
    if (ahead_ < 0) return nullptr;
    const uint64_t bytesAhead = bits_ >> 1 >> (63 - count_) & ((uint64_t{1} << ahead_) - 1);
    const uint8_t* const next = next_ - (ahead_ >> 3) - countBytesFF(bytesAhead);
    state.reserved = next == start ? state.reserved : 0;
    // Of many bytes the last ones are enough.
    if (next - start > 8) {
      start = next - 8;
      start += start[-1] == 0xFF;
    }
    state.bitBuffer = appendBytes(state.bitBuffer, start, next);
    state.bitCount = static_cast<int32_t>(count_ - ahead_);
    return next;
  }

  static ptrdiff_t countBytesFF(uint64_t word) {
    ptrdiff_t count = 0;
    for (; word != 0; word >>= 8) count += (word & 0xFF) == 0xFF;
    return count;
  }

  // What a buffer of 32 bits holds after the data bytes from `start` to `next` as well.
  static uint32_t appendBytes(uint32_t buffer, const uint8_t* start, const uint8_t* next) {
    for (; start < next; ++start) {
      buffer = buffer << 8 | *start;
      if (*start == 0xFF) ++start;
    }
    return buffer;
  }

  static HWY_NOINLINE uint32_t findLongCode(const HuffmanDecodeSpec& spec, uint32_t bits) {
    uint32_t length = 0;
#if ZORJ_SIMD
    // The first 9 to 16 bits at once.
    const hn::Full128<uint16_t> d;
    alignas(16) static constexpr uint16_t kShifts[8] = {1 << 9,  1 << 10, 1 << 11, 1 << 12,
                                                        1 << 13, 1 << 14, 1 << 15, 0};
    alignas(16) static constexpr uint16_t kAllBits[8] = {0, 0, 0, 0, 0, 0, 0, 0xFFFF};
    const auto word = hn::Set(d, static_cast<uint16_t>(bits));
    const auto codes = hn::Or(hn::MulHigh(word, hn::Load(d, kShifts)), hn::And(word, hn::Load(d, kAllBits)));
    const auto largest = hn::LoadU(d, spec.maxCode + 9);
    const auto none = hn::Eq(largest, hn::Set(d, kNoCode));
    const intptr_t found = hn::FindFirstTrue(d, hn::AndNot(none, hn::Eq(hn::Min(codes, largest), codes)));
    if (found < 0) return 0;
    length = 9 + static_cast<uint32_t>(found);
#else
    uint32_t found = 0;
    for (int i = 9; i <= kMaxCodeLength; ++i) {
      const bool valid = spec.maxCode[i] != kNoCode && bits >> (16 - i) <= spec.maxCode[i];
      found |= uint32_t{valid} << i;
    }
    if (found == 0) return 0;
    length = static_cast<uint32_t>(std::countr_zero(found));
#endif
    const uint32_t index = spec.symbolIndex[length] + (bits >> (16 - length)) - spec.minCode[length];
    return length << 16 | spec.symbols[index & 0xFF];
  }

  const uint8_t* next_;
  const uint8_t* safe_;  // up to here, eight bytes can be read at once
  uint64_t bits_;        // left-aligned; what lies beyond count_ is the beginning of the next byte, or 0
  ptrdiff_t count_;
  ptrdiff_t ahead_ = 0;  // bits of the window that BitReader would not have read yet; negative: it would have read more
  const uint8_t* end_;
  ptrdiff_t stuffed_ = 0;  // stuffed bytes passed
};
