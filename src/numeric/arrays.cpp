#include "numeric/arrays.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>

namespace ovaro {

namespace detail {

void boundsFailure(const char* what, long index, long lo, long hi) {
  std::fprintf(stderr, "ovaro: %s %ld outside its bounds %ld..%ld\n", what, index, lo, hi);
  std::abort();
}

void outOfMemory(const char* message) {
  if (message != nullptr && *message != '\0') std::fprintf(stderr, "%s\n", message);
  std::exit(EXIT_FAILURE);
}

template <typename T>
std::vector<T> zeroStorage(std::size_t count, const char* message) {
  try {
    return std::vector<T>(count, T{});
  } catch (const std::bad_alloc&) {
    outOfMemory(message);
  } catch (const std::length_error&) {
    outOfMemory(message);
  }
}

template std::vector<double> zeroStorage<double>(std::size_t, const char*);
template std::vector<int> zeroStorage<int>(std::size_t, const char*);

}  // namespace detail

namespace {
std::size_t extent(int lo, int hi) {
  return hi >= lo ? static_cast<std::size_t>(hi - lo) + 1 : 0;
}
}  // namespace

Vec::Vec(int lo, int hi) : lo_(lo), hi_(hi), base_(lo < 0 ? lo : 0) {
  // Room for 0..hi whatever lo is (and for lo..hi when lo is negative).
  data_ = detail::zeroStorage<double>(extent(base_, hi), "vec1: Insufficient memory .");
}

template <typename T>
BasicMatrix<T>::BasicMatrix(int rlo, int rhi, int clo, int chi)
    : rlo_(rlo), rhi_(rhi), clo_(clo), chi_(chi) {
  data_ = detail::zeroStorage<T>(extent(rlo, rhi) * extent(clo, chi), "");
}

template class BasicMatrix<double>;
template class BasicMatrix<int>;

Mat3::Mat3(int rlo, int rhi, int clo, int chi, int dlo, int dhi)
    : rlo_(rlo), rhi_(rhi), clo_(clo), chi_(chi), dlo_(dlo), dhi_(dhi) {
  data_ = detail::zeroStorage<double>(extent(rlo, rhi) * extent(clo, chi) * extent(dlo, dhi),
                                      "mat3: Insufficient memory.");
}

Vec vec1(int nl, int nh) {
  return Vec(nl, nh);
}
Mat mat2(int nrl, int nrh, int ncl, int nch) {
  return Mat(nrl, nrh, ncl, nch);
}
IMat imat2(int nrl, int nrh, int ncl, int nch) {
  return IMat(nrl, nrh, ncl, nch);
}
Mat3 mat3(int nrl, int nrh, int ncl, int nch, int ndl, int ndh) {
  return Mat3(nrl, nrh, ncl, nch, ndl, ndh);
}
Mat3 mat3m(int nrl, int nrh, int ncl, int nch, int ndl, int ndh) {
  return Mat3(nrl, nrh, ncl, nch, ndl, ndh);
}

}  // namespace ovaro
