// The rows and tiles of a wavelet transform, for any wavelet W. Included after jpeg2k/lanes-inl.h, once per target.
//
// W has: Sample and Working, the types of samples outside and of those in the arithmetic; kReach, how many pairs around
// a pair it needs; Rows, which transforms a line; forwardColumns and inverseColumns. Where Rows is RowTransform, it
// also has Analysis and Synthesis, its lifting steps along a row, with results kLag blocks late.

HWY_BEFORE_NAMESPACE();
namespace zorj::HWY_NAMESPACE {
namespace {

// Where a line that is reflected about both of its ends has the sample of position c.
inline ptrdiff_t reflect(ptrdiff_t c, ptrdiff_t first, ptrdiff_t last) {
  while (c < first || c > last) c = (c < first ? 2 * first : 2 * last) - c;
  return c;
}

// Columns to transform: rows of samples by position, rows of the subbands by number. Where the columns are bordered,
// the rows around them hold what the filters need; elsewhere lines are reflected, which makes the one neighbour there
// is count twice.
template <class T>
struct ForwardColumns {
  Image<const T> x;
  Image<T> low, high;
  Line line;
  bool bordered;
  size_t width;
};
template <class T>
struct InverseColumns {
  Image<const T> low, high;
  Image<T> x;
  Line line;
  bool bordered;
  size_t width;
};

// ---- Rows

// Samples and subbands as the filters take them: by blocks, a vector of pairs each.
template <class T>
struct InTurns {
  const T* x;
  template <class D, class V>
  HWY_INLINE void read(D d, ptrdiff_t k, V& even, V& odd) const {
    loadPairs(d, x + 2 * k, even, odd);
  }
};
template <class T>
struct Apart {
  const T* low;
  const T* high;
  template <class D, class V>
  HWY_INLINE void read(D d, ptrdiff_t k, V& s, V& h) const {
    s = load(d, low + k);
    h = load(d, high + k);
  }
};

// The filters run along a line by blocks, and give the results of a block W::kLag blocks later. They read whole blocks
// of the line in place; here are the blocks before and behind those. All that is computed on but never stored is zero
// or comes from samples.
template <class W>
class RowTransform {
 public:
  using Sample = typename W::Sample;
  using Working = typename W::Working;

  // Transforms a line whose positions `first` to `last` can be read at x.
  void forward(const Sample* x, ptrdiff_t first, ptrdiff_t last, Line line, Sample* low, Sample* high) {
    const auto at = [=](ptrdiff_t c) { return x + reflect(c, first, last); };
    const ptrdiff_t inPlace = wholeBlocks((last + 1) >> 1), before = W::kReach + line.parity;
    copyInside(x, -2 * before, 0, first, last + 1, head_ + 2 * (kLead - before), at);
    copyInside(x, 2 * inPlace, 2 * (line.lows() + W::kReach), first, last + 1, tail_, at);
    const auto put = [=](Tag d, ptrdiff_t k, auto s, auto h) HWY_ATTR {
      store(d, s, low + k);
      store(d, h, high + k);
    };
    const auto putSome = [=](Tag d, ptrdiff_t k, auto s, auto h, size_t lows, size_t highs) HWY_ATTR {
      Sample some[2 * kLanes];
      store(d, s, some);
      store(d, h, some + kLanes);
      std::memcpy(static_cast<void*>(low + k), some, lows * sizeof(Sample));
      std::memcpy(static_cast<void*>(high + k), some + kLanes, highs * sizeof(Sample));
    };
    run<typename W::template Analysis<Tag>>(line, InTurns<Sample>{head_}, InTurns<Sample>{x}, inPlace,
                                            InTurns<Sample>{tail_}, put, putSome, high - 1);
  }

  // The inverse, from subbands that can be read at positions `first` to `last`.
  void inverse(const Sample* low, const Sample* high, ptrdiff_t first, ptrdiff_t last, Line line, Sample* x) {
    const auto at = [=](ptrdiff_t c) {
      c = reflect(c, first, last);
      return (c & 1) == 0 ? low + (c >> 1) : high + (c >> 1);
    };
    const auto lowAt = [=](ptrdiff_t k) { return at(2 * k); };
    const auto highAt = [=](ptrdiff_t k) { return at(2 * k + 1); };
    const ptrdiff_t firstLow = (first + 1) >> 1, endLow = (last >> 1) + 1, firstHigh = first >> 1,
                    endHigh = (last + 1) >> 1, inPlace = wholeBlocks(endHigh), before = W::kReach + line.parity,
                    end = line.lows() + W::kReach;
    copyInside(low, -before, 0, firstLow, endLow, head_ + kLead - before, lowAt);
    copyInside(high, -before, 0, firstHigh, endHigh, head_ + 2 * kLead - before, highAt);
    copyInside(low, inPlace, end, firstLow, endLow, tail_, lowAt);
    copyInside(high, inPlace, end, firstHigh, endHigh, tail_ + kTail, highAt);
    const auto put = [=](Tag d, ptrdiff_t k, auto even, auto odd) HWY_ATTR { storePairs(d, even, odd, x + 2 * k); };
    const auto putSome = [=](Tag d, ptrdiff_t k, auto even, auto odd, size_t evens, size_t odds) HWY_ATTR {
      Sample some[2 * kLanes];
      storePairs(d, even, odd, some);
      std::memcpy(static_cast<void*>(x + 2 * k), some, (evens + odds) * sizeof(Sample));
    };
    run<typename W::template Synthesis<Tag>>(line, Apart<Sample>{head_, head_ + kLead}, Apart<Sample>{low, high},
                                             inPlace, Apart<Sample>{tail_, tail_ + kTail}, put, putSome, x - 1);
  }

 private:
#if ZORJ_SIMD
  using Tag = hn::ScalableTag<Working>;
  static constexpr ptrdiff_t kLanes = HWY_LANES(Working);
#else
  using Tag = Single<Working>;
  static constexpr ptrdiff_t kLanes = 1;
#endif
  // Pairs: at most so many are needed before the first, where that is one of an odd sample alone.
  static constexpr ptrdiff_t kLead = (W::kReach + kLanes) / kLanes * kLanes;
  static constexpr ptrdiff_t kLag = W::kLag * kLanes;
  static constexpr ptrdiff_t kTail = kLag + 2 * kLanes + W::kReach;

  static ptrdiff_t wholeBlocks(ptrdiff_t pairs) { return pairs / kLanes * kLanes; }

  // to[k - begin] = from[k] as far as `inside` <= k < `outside`, elsewhere *at(k).
  template <class At>
  static void copyInside(const Sample* from, ptrdiff_t begin, ptrdiff_t end, ptrdiff_t inside, ptrdiff_t outside,
                         Sample* to, const At& at) {
    inside = std::clamp(inside, begin, std::max(begin, end));
    outside = std::clamp(outside, inside, std::max(inside, end));
    for (ptrdiff_t k = begin; k < inside; ++k) to[k - begin] = loadUnaligned(at(k));
    std::memcpy(to + (inside - begin), static_cast<const void*>(from + inside),
                static_cast<size_t>(outside - inside) * sizeof(Sample));
    for (ptrdiff_t k = outside; k < end; ++k) to[k - begin] = loadUnaligned(at(k));
  }

  // Results of blocks of pairs go to put(d, k, even, odd); those of the last one, where it is incomplete, to
  // putSome(d, k, even, odd, evens, odds); the odd result before the first even one, if there is one, to `before`.
  template <class Steps, class Source, class Put, class PutSome>
  static HWY_INLINE void run(Line line, const Source& head, const Source& x, ptrdiff_t inPlace, const Source& tail,
                             const Put& put, const PutSome& putSome, Sample* before) {
    const Tag d;
    auto even = constant(d, Working{0}), odd = even;
    Steps steps(d);
    const ptrdiff_t evens = line.lows(), odds = line.endHigh(), fastEnd = std::min(inPlace, odds + kLag) - kLanes;
    for (ptrdiff_t next = -kLead;; next += kLanes) {
      if (next == kLag) {
        for (; next <= fastEnd; next += kLanes) {
          x.read(d, next, even, odd);
          steps.advance(d, even, odd);
          put(d, next - kLag, even, odd);
        }
      }
      const ptrdiff_t k = next - kLag;
      if (k >= evens) return;
      if (next < 0) {
        head.read(d, next + kLead, even, odd);
      } else if (next < inPlace) {
        x.read(d, next, even, odd);
      } else {
        tail.read(d, next - inPlace, even, odd);
      }
      steps.advance(d, even, odd);
      if (k >= 0 && k + kLanes <= odds) {
        put(d, k, even, odd);
      } else if (k >= 0) {
        putSome(d, k, even, odd, static_cast<size_t>(std::min(kLanes, evens - k)), static_cast<size_t>(odds - k));
      } else if (k == -kLanes && line.parity != 0) {
        Sample results[kLanes];
        store(d, odd, results);
        storeUnaligned(before, results[kLanes - 1]);
      }
    }
  }

  Sample head_[2 * kLead] = {};
  Sample tail_[2 * kTail] = {};
};

// What a filter may read of a line of bordered subbands of n samples each.
template <class W>
void forwardRows(Image<const typename W::Sample> src, Image<typename W::Sample> low, Image<typename W::Sample> high,
                 RoiSize band, int parity) {
  typename W::Rows lines;
  const ptrdiff_t n = band.width;
  for (ptrdiff_t y = 0; y < band.height; ++y) {
    lines.forward(src.row(y) + parity, -2 * W::kReach, 2 * (n + W::kReach - 1), {2 * n, parity}, low.row(y),
                  high.row(y) + parity);
  }
}

template <class W>
void inverseRows(Image<const typename W::Sample> low, Image<const typename W::Sample> high,
                 Image<typename W::Sample> dst, RoiSize band, int parity) {
  typename W::Rows lines;
  const ptrdiff_t n = band.width;
  for (ptrdiff_t y = 0; y < band.height; ++y) {
    lines.inverse(low.row(y), high.row(y) + parity, 1 - 2 * W::kReach - 2 * parity, 2 * (n + W::kReach - parity) - 1,
                  {2 * n, parity}, dst.row(y) + parity);
  }
}

// Columns whose borders lie around them in the images.
template <class W>
void forwardBorderedColumns(Image<const typename W::Sample> src, Image<typename W::Sample> low,
                            Image<typename W::Sample> high, RoiSize band, int parity) {
  W::forwardColumns({{src.row(parity), src.step},
                     low,
                     {high.row(parity), high.step},
                     {ptrdiff_t{2} * band.height, parity},
                     true,
                     static_cast<size_t>(band.width)});
}

template <class W>
void inverseBorderedColumns(Image<const typename W::Sample> low, Image<const typename W::Sample> high,
                            Image<typename W::Sample> dst, RoiSize band, int parity) {
  W::inverseColumns({low,
                     {high.row(parity), high.step},
                     {dst.row(parity), dst.step},
                     {ptrdiff_t{2} * band.height, parity},
                     true,
                     static_cast<size_t>(band.width)});
}

// ---- Lines of one and two samples: `count` of them, side by side

template <class W>
void forwardSingles(const typename W::Sample* x, typename W::Sample* band, bool isHigh, size_t count) {
  forEachLane<typename W::Working>(count, [=](auto d, size_t i) HWY_ATTR {
    const auto sample = load(d, x + i);
    store(d, isHigh ? add(sample, sample) : sample, band + i);
  });
}

template <class W>
void inverseSingles(const typename W::Sample* band, typename W::Sample* x, bool isHigh, size_t count) {
  using S = typename W::Working;
  forEachLane<S>(count, [=](auto d, size_t i) HWY_ATTR {
    const auto sample = load(d, band + i);
    // Halves truncate toward zero.
    const auto positive = subtract(sample, shiftRight<8 * sizeof(S) - 1>(d, sample));
    store(d, isHigh ? shiftRight<1>(d, positive) : sample, x + i);
  });
}

// (x + 1) >> 1 of a difference; 16-bit differences have no room for the sum.
template <class D, class V>
HWY_INLINE V halfUp(D d, V x, int16_t) {
  return subtract(x, shiftRight<1>(d, x));
}
template <class D, class V>
HWY_INLINE V halfUp(D d, V x, int32_t one) {
  return shiftRight<1>(d, add(x, constant(d, one)));
}

template <class W>
void forwardPairs(const typename W::Sample* even, const typename W::Sample* odd, typename W::Sample* low,
                  typename W::Sample* high, size_t count) {
  using S = typename W::Working;
  forEachLane<S>(count, [=](auto d, size_t i) HWY_ATTR {
    const auto e = load(d, even + i), difference = subtract(load(d, odd + i), e);
    store(d, add(e, halfUp(d, difference, S{1})), low + i);
    store(d, difference, high + i);
  });
}

template <class W>
void inversePairs(const typename W::Sample* low, const typename W::Sample* high, typename W::Sample* even,
                  typename W::Sample* odd, size_t count) {
  using S = typename W::Working;
  forEachLane<S>(count, [=](auto d, size_t i) HWY_ATTR {
    const auto difference = load(d, high + i), e = subtract(load(d, low + i), halfUp(d, difference, S{1}));
    store(d, e, even + i);
    store(d, add(e, difference), odd + i);
  });
}

// ---- Tiles

// A row into its low samples, followed by its high samples; and back.
template <class W>
void forwardRow(typename W::Rows& lines, Line line, const typename W::Sample* x, typename W::Sample* bands) {
  const ptrdiff_t lows = line.lows();
  if (line.length == 1) {
    forwardSingles<W>(x, bands, line.parity != 0, 1);
  } else if (line.length == 2) {
    forwardPairs<W>(x + line.parity, x + 1 - line.parity, bands, bands + 1, 1);
  } else {
    lines.forward(x + line.parity, line.first(), line.last(), line, bands, bands + lows + line.parity);
  }
}

template <class W>
void inverseRow(typename W::Rows& lines, Line line, const typename W::Sample* bands, typename W::Sample* x) {
  const ptrdiff_t lows = line.lows();
  if (line.length == 1) {
    inverseSingles<W>(bands, x, line.parity != 0, 1);
  } else if (line.length == 2) {
    inversePairs<W>(bands, bands + 1, x + line.parity, x + 1 - line.parity, 1);
  } else {
    lines.inverse(bands, bands + lows + line.parity, line.first(), line.last(), line, x + line.parity);
  }
}

// All columns of a tile; low and high rows are counted from 0.
template <class W>
void forwardTileColumns(Image<const typename W::Sample> x, Image<typename W::Sample> low,
                        Image<typename W::Sample> high, Line line, size_t width) {
  if (line.length == 1) {
    forwardSingles<W>(x.data, line.parity != 0 ? high.data : low.data, line.parity != 0, width);
  } else if (line.length == 2) {
    forwardPairs<W>(x.row(line.parity), x.row(1 - line.parity), low.data, high.data, width);
  } else {
    W::forwardColumns({{x.row(line.parity), x.step}, low, {high.row(line.parity), high.step}, line, false, width});
  }
}

template <class W>
void inverseTileColumns(Image<const typename W::Sample> low, Image<const typename W::Sample> high,
                        Image<typename W::Sample> x, Line line, size_t width) {
  if (line.length == 1) {
    inverseSingles<W>(line.parity != 0 ? high.data : low.data, x.data, line.parity != 0, width);
  } else if (line.length == 2) {
    inversePairs<W>(low.data, high.data, x.row(line.parity), x.row(1 - line.parity), width);
  } else {
    W::inverseColumns({low, {high.row(line.parity), high.step}, {x.row(line.parity), x.step}, line, false, width});
  }
}

// Moves rows to other places through one spare row: row y is made of row sourceOf(y), by transform(to, from). Each
// cycle of the permutation starts at its first row.
template <class T, class SourceOf, class Transform>
void permuteRows(Image<T> rows, ptrdiff_t count, T* spare, size_t width, const SourceOf& sourceOf,
                 const Transform& transform) {
  for (ptrdiff_t start = 0; start < count; ++start) {
    ptrdiff_t y = sourceOf(start);
    while (y > start) y = sourceOf(y);
    if (y != start) continue;
    transform(spare, rows.row(start));
    for (ptrdiff_t from; (from = sourceOf(y)) != start; y = from) transform(rows.row(y), rows.row(from));
    std::memcpy(static_cast<void*>(rows.row(y)), spare, width * sizeof(T));
  }
}

// The columns are transformed where they are, and while the rows are, each moves to its subband.
template <class W, class T = typename W::Sample>
void forwardInPlace(Image<T> tile, const Level<T>& level) {
  const Line across = level.across, down = level.down;
  const auto width = static_cast<size_t>(across.length);
  forwardTileColumns<W>(tile.toRead(), tile.everyOther(down.parity), tile.everyOther(1 - down.parity), down, width);
  typename W::Rows lines;
  permuteRows(
      tile, down.length, level.line, width,
      [=, lows = down.lows()](ptrdiff_t y) {
        return y < lows ? 2 * y + down.parity : 2 * (y - lows) + 1 - down.parity;
      },
      [&](T* to, const T* from) { forwardRow<W>(lines, across, from, to); });
}

template <class W, class T = typename W::Sample>
void inverseInPlace(Image<T> tile, const Level<T>& level) {
  const Line across = level.across, down = level.down;
  const auto width = static_cast<size_t>(across.length);
  typename W::Rows lines;
  permuteRows(
      tile, down.length, level.line, width,
      [=, lows = down.lows()](ptrdiff_t y) { return y % 2 == down.parity ? y / 2 : lows + y / 2; },
      [&](T* to, const T* from) { inverseRow<W>(lines, across, from, to); });
  inverseTileColumns<W>(tile.everyOther(down.parity).toRead(), tile.everyOther(1 - down.parity).toRead(), tile, down,
                        width);
}

// Calls visit(left, right, y) for the row of the buffer that subband rows `left` and `right` share.
template <class T, class Visit>
void forEachSubbandRow(const Image<T> (&subbands)[kSubbands], ptrdiff_t height, const Visit& visit) {
  const ptrdiff_t upper = (height + 1) / 2;
  for (ptrdiff_t y = 0; y < height; ++y) {
    if (y < upper) {
      visit(subbands[kLL].row(y), subbands[kHL].row(y), y);
    } else {
      visit(subbands[kLH].row(y - upper), subbands[kHH].row(y - upper), y);
    }
  }
}

template <class T>
void copySamples(const T* from, T* to, size_t count) {
  std::memcpy(static_cast<void*>(to), static_cast<const void*>(from), count * sizeof(T));
}

// The buffer takes the columns' results, and the line a row's before its halves go to their subbands.
template <class W, class T = typename W::Sample>
void forwardApart(Image<const T> src, const Image<T> (&subbands)[kSubbands], Image<T> buffer, const Level<T>& level) {
  const Line across = level.across, down = level.down;
  const size_t width = static_cast<size_t>(across.length), left = (width + 1) / 2;
  forwardTileColumns<W>(src, buffer, {buffer.row(down.lows()), buffer.step}, down, width);
  typename W::Rows lines;
  forEachSubbandRow(subbands, down.length, [&](T* leftBand, T* rightBand, ptrdiff_t y) {
    forwardRow<W>(lines, across, buffer.row(y), level.line);
    copySamples(level.line, leftBand, left);
    copySamples(level.line + left, rightBand, width - left);
  });
}

template <class W, class T = typename W::Sample>
void inverseApart(const Image<const T> (&subbands)[kSubbands], Image<T> dst, Image<T> buffer, const Level<T>& level) {
  const Line across = level.across, down = level.down;
  const size_t width = static_cast<size_t>(across.length), left = (width + 1) / 2;
  typename W::Rows lines;
  forEachSubbandRow(subbands, down.length, [&](const T* leftBand, const T* rightBand, ptrdiff_t y) {
    copySamples(leftBand, level.line, left);
    copySamples(rightBand, level.line + left, width - left);
    inverseRow<W>(lines, across, level.line, buffer.row(y));
  });
  inverseTileColumns<W>(buffer.toRead(), Image<const T>{buffer.row(down.lows()), buffer.step}, dst, down, width);
}

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
