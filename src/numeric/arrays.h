// Numeric arrays with caller-chosen index bounds.
//
// Every computation in Ovaro works on vectors, matrices and three-index arrays of doubles whose
// index ranges are chosen by the caller: variables usually count from 1, periods from 0. The
// arrays here own their storage (contiguous, zero-filled on creation, released by the
// destructor) and carry their bounds. In debug and sanitizer builds (OVARO_CHECK_BOUNDS) every
// element access is checked against those bounds; in optimised builds an access is a plain
// offset computation.
//
// The allocation functions keep the names the solvers use (`vec1`, `mat2`, `imat2`, `mat3`,
// `mat3m`); the release operations are the destructors.
#pragma once

#include <cstddef>
#include <vector>

namespace ovaro {

namespace detail {
[[noreturn]] void boundsFailure(const char* what, long index, long lo, long hi);
// Ends the program after exhausted memory, printing `message` first (the array store cannot
// recover from it).
[[noreturn]] void outOfMemory(const char* message);
// Allocates `count` zero elements, ending the program with `message` when memory is exhausted.
template <typename T>
std::vector<T> zeroStorage(std::size_t count, const char* message);
}  // namespace detail

#if defined(OVARO_CHECK_BOUNDS)
#define OVARO_CHECK_INDEX(what, i, lo, hi) \
  ((i) >= (lo) && (i) <= (hi) ? void(0) : ::ovaro::detail::boundsFailure(what, (i), (lo), (hi)))
#else
#define OVARO_CHECK_INDEX(what, i, lo, hi) void(0)
#endif

// A vector of doubles addressed v(i) for i in lo..hi. Storage always has room for 0..hi as well
// (an index below lo but not below 0 is addressable in the storage, though a bounds-checked
// build rejects it), so a vector made with lower bound 1 can be handed to code that indexes
// from 0 only by mistake, never by accident of layout.
class Vec {
 public:
  Vec() = default;
  Vec(int lo, int hi);

  double& operator()(int i) {
    OVARO_CHECK_INDEX("vector index", i, lo_, hi_);
    return data_[static_cast<std::size_t>(i - base_)];
  }
  double operator()(int i) const {
    OVARO_CHECK_INDEX("vector index", i, lo_, hi_);
    return data_[static_cast<std::size_t>(i - base_)];
  }

  int lo() const { return lo_; }
  int hi() const { return hi_; }
  // Number of addressable elements, hi - lo + 1 (0 for an empty range).
  int size() const { return hi_ >= lo_ ? hi_ - lo_ + 1 : 0; }

 private:
  int lo_ = 1;
  int hi_ = 0;
  int base_ = 0;  // index of data_[0]: min(lo, 0)
  std::vector<double> data_;
};

// A matrix addressed a(i, j) for rows rlo..rhi and columns clo..chi, stored row-major.
template <typename T>
class BasicMatrix {
 public:
  BasicMatrix() = default;
  BasicMatrix(int rlo, int rhi, int clo, int chi);

  T& operator()(int i, int j) {
    OVARO_CHECK_INDEX("matrix row", i, rlo_, rhi_);
    OVARO_CHECK_INDEX("matrix column", j, clo_, chi_);
    return data_[offset(i, j)];
  }
  T operator()(int i, int j) const {
    OVARO_CHECK_INDEX("matrix row", i, rlo_, rhi_);
    OVARO_CHECK_INDEX("matrix column", j, clo_, chi_);
    return data_[offset(i, j)];
  }

  // The address of element (i, j); the row continues contiguously from there to column chi, so
  // that inner loops can run over a row without an index computation per element.
  T* at(int i, int j) {
    OVARO_CHECK_INDEX("matrix row", i, rlo_, rhi_);
    OVARO_CHECK_INDEX("matrix column", j, clo_, chi_);
    return data_.data() + offset(i, j);
  }
  const T* at(int i, int j) const {
    OVARO_CHECK_INDEX("matrix row", i, rlo_, rhi_);
    OVARO_CHECK_INDEX("matrix column", j, clo_, chi_);
    return data_.data() + offset(i, j);
  }

  int rlo() const { return rlo_; }
  int rhi() const { return rhi_; }
  int clo() const { return clo_; }
  int chi() const { return chi_; }
  int rows() const { return rhi_ >= rlo_ ? rhi_ - rlo_ + 1 : 0; }
  int cols() const { return chi_ >= clo_ ? chi_ - clo_ + 1 : 0; }

 private:
  std::size_t offset(int i, int j) const {
    return static_cast<std::size_t>(i - rlo_) * static_cast<std::size_t>(cols()) +
           static_cast<std::size_t>(j - clo_);
  }

  int rlo_ = 1, rhi_ = 0, clo_ = 1, chi_ = 0;
  std::vector<T> data_;
};

using Mat = BasicMatrix<double>;
using IMat = BasicMatrix<int>;

// A three-index array a(i, j, k), i in rlo..rhi, j in clo..chi, k in dlo..dhi. Used as
// variable x period x scenario and as period x row x column of per-period covariances.
class Mat3 {
 public:
  Mat3() = default;
  Mat3(int rlo, int rhi, int clo, int chi, int dlo, int dhi);

  double& operator()(int i, int j, int k) {
    check(i, j, k);
    return data_[offset(i, j, k)];
  }
  double operator()(int i, int j, int k) const {
    check(i, j, k);
    return data_[offset(i, j, k)];
  }

  int rlo() const { return rlo_; }
  int rhi() const { return rhi_; }
  int clo() const { return clo_; }
  int chi() const { return chi_; }
  int dlo() const { return dlo_; }
  int dhi() const { return dhi_; }

 private:
  static int extent(int lo, int hi) { return hi >= lo ? hi - lo + 1 : 0; }
  void check([[maybe_unused]] int i, [[maybe_unused]] int j, [[maybe_unused]] int k) const {
    OVARO_CHECK_INDEX("three-index array first index", i, rlo_, rhi_);
    OVARO_CHECK_INDEX("three-index array second index", j, clo_, chi_);
    OVARO_CHECK_INDEX("three-index array third index", k, dlo_, dhi_);
  }
  std::size_t offset(int i, int j, int k) const {
    const auto nj = static_cast<std::size_t>(extent(clo_, chi_));
    const auto nk = static_cast<std::size_t>(extent(dlo_, dhi_));
    return (static_cast<std::size_t>(i - rlo_) * nj + static_cast<std::size_t>(j - clo_)) * nk +
           static_cast<std::size_t>(k - dlo_);
  }

  int rlo_ = 1, rhi_ = 0, clo_ = 1, chi_ = 0, dlo_ = 1, dhi_ = 0;
  std::vector<double> data_;
};

// Allocation, under the names the solvers use. Every array comes back zero-filled.
Vec vec1(int nl, int nh);
Mat mat2(int nrl, int nrh, int ncl, int nch);
IMat imat2(int nrl, int nrh, int ncl, int nch);
Mat3 mat3(int nrl, int nrh, int ncl, int nch, int ndl, int ndh);
// The variant whose first-level entries are matrices; with contiguous storage it is the same
// array as `mat3`, kept as its own name because callers allocate per-period covariances with it.
Mat3 mat3m(int nrl, int nrh, int ncl, int nch, int ndl, int ndh);

}  // namespace ovaro
