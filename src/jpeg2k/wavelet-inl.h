// The rows and tiles of a wavelet transform, for any wavelet W. Included after jpeg2k/lanes-inl.h, once per target.
//
// W has: Sample and Working, the types of samples outside and of those in the arithmetic; kReach, how many pairs around
// a block it needs; analyse and synthesise, its lifting steps on a window of pairs; forwardColumns and inverseColumns.

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

// A block of a line with what surrounds it, split into even and odd positions. All of it that is computed on but never
// stored is zero or comes from samples.
template <class W>
class Window {
 public:
  using Sample = typename W::Sample;
  using Working = typename W::Working;

  // Transforms a line whose positions `first` to `last` can be read at x, into low samples 0 to lows - 1 and high
  // samples firstHigh to endHigh - 1.
  void forward(const Sample* x, ptrdiff_t first, ptrdiff_t last, Line line, Sample* low, Sample* high) {
    const ptrdiff_t end = std::max(line.lows(), line.endHigh());
    for (ptrdiff_t from = line.firstHigh(); from < end; from += kPairs) {
      const ptrdiff_t to = std::min(from + kPairs, end);
      split(x, first, last, from - W::kReach, to + W::kReach);
      W::analyse(even(), odd(), size_);
      take(even(), std::max<ptrdiff_t>(from, 0), std::min(to, line.lows()), low);
      take(odd(), from, std::min(to, line.endHigh()), high);
    }
  }

  // The inverse, from subbands that can be read at positions `first` to `last`.
  void inverse(const Sample* low, const Sample* high, ptrdiff_t first, ptrdiff_t last, Line line, Sample* x) {
    const ptrdiff_t end = std::max(line.lows(), line.endHigh());
    for (ptrdiff_t from = line.firstHigh(); from < end; from += kPairs) {
      const ptrdiff_t to = std::min(from + kPairs, end);
      gather(low, high, first, last, from - W::kReach, to + W::kReach);
      W::synthesise(even(), odd(), size_);
      join(x, line.first(), line.last(), from, to);
    }
  }

 private:
  static constexpr ptrdiff_t kPairs = 512;
  static constexpr ptrdiff_t kFront = 16, kBehind = 64;

  Working* even() { return even_ + kFront; }
  Working* odd() { return odd_ + kFront; }
  // Starts a window of pairs begin to end - 1.
  void open(ptrdiff_t begin, ptrdiff_t end) {
    begin_ = begin;
    size_ = static_cast<size_t>(end - begin);
    const auto clear = [this](auto d, size_t i) HWY_ATTR {
      store(d, constant(d, Working{0}), even() + size_ + i);
      store(d, constant(d, Working{0}), odd() + size_ + i);
    };
    forEachVector<Working>(1, clear);
  }
  static Single<Working> one() { return {}; }

  void split(const Sample* x, ptrdiff_t first, ptrdiff_t last, ptrdiff_t begin, ptrdiff_t end) {
    open(begin, end);
    const ptrdiff_t inside = std::max(begin, (first + 1) >> 1), outside = std::min(end, (last + 1) >> 1);
    const auto reflected = [&](ptrdiff_t k) {
      even()[k - begin] = load(one(), x + reflect(2 * k, first, last));
      odd()[k - begin] = load(one(), x + reflect(2 * k + 1, first, last));
    };
    for (ptrdiff_t k = begin; k < std::min(inside, end); ++k) reflected(k);
    for (ptrdiff_t k = std::max(begin, outside); k < end; ++k) reflected(k);
    if (inside >= outside) return;
    forEachOverlapping<Working>(static_cast<size_t>(outside - inside), [&, this](auto d, size_t i) HWY_ATTR {
      auto evens = constant(d, Working{0}), odds = evens;
      loadPairs(d, x + 2 * (inside + static_cast<ptrdiff_t>(i)), evens, odds);
      store(d, evens, even() + (inside - begin) + i);
      store(d, odds, odd() + (inside - begin) + i);
    });
  }

  void gather(const Sample* low, const Sample* high, ptrdiff_t first, ptrdiff_t last, ptrdiff_t begin, ptrdiff_t end) {
    open(begin, end);
    const auto at = [&](ptrdiff_t c) {
      c = reflect(c, first, last);
      return load(one(), (c & 1) == 0 ? low + (c >> 1) : high + (c >> 1));
    };
    // Subband samples `inside` to `outside` - 1 can be read in place, the others are at reflected positions.
    const auto gatherBand = [&](const Sample* band, int odds, Working* to) {
      const ptrdiff_t inside = std::clamp((first - odds + 1) >> 1, begin, end);
      const ptrdiff_t outside = std::clamp(((last - odds) >> 1) + 1, inside, end);
      for (ptrdiff_t k = begin; k < inside; ++k) to[k - begin] = at(2 * k + odds);
      for (ptrdiff_t k = outside; k < end; ++k) to[k - begin] = at(2 * k + odds);
      forEachOverlapping<Working>(static_cast<size_t>(outside - inside), [&](auto d, size_t i) HWY_ATTR {
        store(d, load(d, band + inside + i), to + (inside - begin) + i);
      });
    };
    gatherBand(low, 0, even());
    gatherBand(high, 1, odd());
  }

  // Writes results `from` to `to` - 1.
  void take(const Working* results, ptrdiff_t from, ptrdiff_t to, Sample* band) const {
    if (from >= to) return;
    forEachOverlapping<Working>(static_cast<size_t>(to - from), [&, this](auto d, size_t i) HWY_ATTR {
      store(d, load(d, results + (from - begin_) + i), band + from + i);
    });
  }

  // Writes pairs `from` to `to` - 1, as far as they lie on the line.
  void join(Sample* x, ptrdiff_t first, ptrdiff_t last, ptrdiff_t from, ptrdiff_t to) {
    if (2 * from < first) {
      store(one(), odd()[from - begin_], x + 2 * from + 1);
      ++from;
    }
    if (2 * to - 1 > last) {
      --to;
      store(one(), even()[to - begin_], x + 2 * to);
    }
    if (from >= to) return;
    forEachOverlapping<Working>(static_cast<size_t>(to - from), [&, this](auto d, size_t i) HWY_ATTR {
      const ptrdiff_t k = from + static_cast<ptrdiff_t>(i);
      storePairs(d, load(d, even() + (k - begin_)), load(d, odd() + (k - begin_)), x + 2 * k);
    });
  }

  ptrdiff_t begin_ = 0;
  size_t size_ = 0;
  Working even_[kFront + kPairs + kBehind] = {};
  Working odd_[kFront + kPairs + kBehind] = {};
};

// What a filter may read of a line of bordered subbands of n samples each.
template <class W>
void forwardRows(Image<const typename W::Sample> src, Image<typename W::Sample> low, Image<typename W::Sample> high,
                 RoiSize band, int parity) {
  Window<W> window;
  const ptrdiff_t n = band.width;
  for (ptrdiff_t y = 0; y < band.height; ++y) {
    window.forward(src.row(y) + parity, -2 * W::kReach, 2 * (n + W::kReach - 1), {2 * n, parity}, low.row(y),
                   high.row(y) + parity);
  }
}

template <class W>
void inverseRows(Image<const typename W::Sample> low, Image<const typename W::Sample> high,
                 Image<typename W::Sample> dst, RoiSize band, int parity) {
  Window<W> window;
  const ptrdiff_t n = band.width;
  for (ptrdiff_t y = 0; y < band.height; ++y) {
    window.inverse(low.row(y), high.row(y) + parity, 1 - 2 * W::kReach - 2 * parity, 2 * (n + W::kReach - parity) - 1,
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
void forwardRow(Window<W>& window, Line line, const typename W::Sample* x, typename W::Sample* bands) {
  const ptrdiff_t lows = line.lows();
  if (line.length == 1) {
    forwardSingles<W>(x, bands, line.parity != 0, 1);
  } else if (line.length == 2) {
    forwardPairs<W>(x + line.parity, x + 1 - line.parity, bands, bands + 1, 1);
  } else {
    window.forward(x + line.parity, line.first(), line.last(), line, bands, bands + lows + line.parity);
  }
}

template <class W>
void inverseRow(Window<W>& window, Line line, const typename W::Sample* bands, typename W::Sample* x) {
  const ptrdiff_t lows = line.lows();
  if (line.length == 1) {
    inverseSingles<W>(bands, x, line.parity != 0, 1);
  } else if (line.length == 2) {
    inversePairs<W>(bands, bands + 1, x + line.parity, x + 1 - line.parity, 1);
  } else {
    window.inverse(bands, bands + lows + line.parity, line.first(), line.last(), line, x + line.parity);
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
  Window<W> window;
  permuteRows(
      tile, down.length, level.line, width,
      [=, lows = down.lows()](ptrdiff_t y) {
        return y < lows ? 2 * y + down.parity : 2 * (y - lows) + 1 - down.parity;
      },
      [&](T* to, const T* from) { forwardRow(window, across, from, to); });
}

template <class W, class T = typename W::Sample>
void inverseInPlace(Image<T> tile, const Level<T>& level) {
  const Line across = level.across, down = level.down;
  const auto width = static_cast<size_t>(across.length);
  Window<W> window;
  permuteRows(
      tile, down.length, level.line, width,
      [=, lows = down.lows()](ptrdiff_t y) { return y % 2 == down.parity ? y / 2 : lows + y / 2; },
      [&](T* to, const T* from) { inverseRow(window, across, from, to); });
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
  Window<W> window;
  forEachSubbandRow(subbands, down.length, [&](T* leftBand, T* rightBand, ptrdiff_t y) {
    forwardRow(window, across, buffer.row(y), level.line);
    copySamples(level.line, leftBand, left);
    copySamples(level.line + left, rightBand, width - left);
  });
}

template <class W, class T = typename W::Sample>
void inverseApart(const Image<const T> (&subbands)[kSubbands], Image<T> dst, Image<T> buffer, const Level<T>& level) {
  const Line across = level.across, down = level.down;
  const size_t width = static_cast<size_t>(across.length), left = (width + 1) / 2;
  Window<W> window;
  forEachSubbandRow(subbands, down.length, [&](const T* leftBand, const T* rightBand, ptrdiff_t y) {
    copySamples(leftBand, level.line, left);
    copySamples(rightBand, level.line + left, width - left);
    inverseRow(window, across, level.line, buffer.row(y));
  });
  inverseTileColumns<W>(buffer.toRead(), Image<const T>{buffer.row(down.lows()), buffer.step}, dst, down, width);
}

}  // namespace
}  // namespace zorj::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
