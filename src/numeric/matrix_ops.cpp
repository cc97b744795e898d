// The matrix library behind the solvers.
//
// Every routine is a plain loop nest over the index ranges it is given, rows outermost, each
// index in increasing order. Sums are accumulated in a local that starts at 0 and adds its terms
// in increasing order of the summation index; a product of several factors associates from the
// left. Those orders are part of the contract: the solvers' paths and criterion values are
// compared to the bit between builds and against stored results, and reordering a sum changes
// the last bits.
#include "numeric/matrix_ops.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace ovaro {

void mzero(int n, int m, Mat& A) {
  mzerosub(1, n, 1, m, A);
}

void mzerosub(int rlo, int rhi, int clo, int chi, Mat& A) {
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) A(i, j) = 0.0;
}

void mident(int n, int m, Mat& A) {
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= m; ++j) A(i, j) = i == j ? 1.0 : 0.0;
}

void mmov(int n, int m, const Mat& A, Mat& B) {
  mmovsub(1, n, 1, m, A, B);
}

void mmovsub(int rlo, int rhi, int clo, int chi, const Mat& A, Mat& B) {
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) B(i, j) = A(i, j);
}

void mmov3sub(int rlo, int rhi, int clo, int chi, int dlo, int dhi, const Mat3& A3, Mat3& B3) {
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j)
      for (int k = dlo; k <= dhi; ++k) B3(i, j, k) = A3(i, j, k);
}

void mneg(int n, int m, const Mat& A, Mat& B) {
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= m; ++j) B(i, j) = -A(i, j);
}

void madd(int n, int m, const Mat& A, const Mat& B, Mat& C) {
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= m; ++j) C(i, j) = A(i, j) + B(i, j);
}

void madd3(int n, int m, const Mat& A, const Mat& B, const Mat& C, Mat& D) {
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= m; ++j) D(i, j) = A(i, j) + B(i, j) + C(i, j);
}

void madd4(int n, int m, const Mat& A, const Mat& B, const Mat& C, const Mat& D, Mat& E) {
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= m; ++j) E(i, j) = A(i, j) + B(i, j) + C(i, j) + D(i, j);
}

void msub(int n, int m, const Mat& A, const Mat& B, Mat& C) {
  msubsub(1, n, 1, m, A, B, C);
}

void msubsub(int rlo, int rhi, int clo, int chi, const Mat& A, const Mat& B, Mat& C) {
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) C(i, j) = A(i, j) - B(i, j);
}

void maddiagcol(int n, int m, int k, const Mat& A, const Mat& V, Mat& C) {
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= m; ++j) C(i, j) = i == j ? A(i, j) + V(i, k) : A(i, j);
}

namespace {

// The columns j..j+W-1 of row i of C = op(A) B, where element (i, k) of op(A) is ai[k * ak]:
// W running sums held in registers over k = 1..p, each started at 0 and fed its terms in the
// order k = 1..p, so that every element is the sum the one-element loop would form while the
// compiler adds W neighbouring elements side by side.
template <int W>
void rowBlock(int p, const double* ai, std::ptrdiff_t ak, const double* bj, std::ptrdiff_t bstride,
              double* cj) {
  double acc[W];
  for (int q = 0; q < W; ++q) acc[q] = 0.0;
  for (int k = 0; k < p; ++k) {
    const double x = *ai;
    for (int q = 0; q < W; ++q) acc[q] += x * bj[q];
    ai += ak;
    bj += bstride;
  }
  for (int q = 0; q < W; ++q) cj[q] = acc[q];
}

// C (n x m) = op(A) B for B p x m, with op(A)(i, k) at a[(i - 1) ai + (k - 1) ak]: rows of C in
// blocks of 8, 4, 2 and 1 columns. On processors with AVX2 a second copy adds four elements per
// instruction instead of two; it is the same separate multiply and add on every element (the
// build forbids their contraction into fused multiply-adds), so both copies give the same bits.
__attribute__((target_clones("avx2", "default"))) void product(int n, int p, int m, const double* a,
                                                               std::ptrdiff_t ai, std::ptrdiff_t ak,
                                                               const Mat& B, Mat& C) {
  if (n < 1 || m < 1) return;
  if (p < 1) {
    mzero(n, m, C);
    return;
  }
  const double* b = B.at(1, 1);
  const std::ptrdiff_t bstride = B.cols();
  for (int i = 1; i <= n; ++i, a += ai) {
    double* c = C.at(i, 1);
    int j = 0;
    for (; j + 8 <= m; j += 8) rowBlock<8>(p, a, ak, b + j, bstride, c + j);
    if (j + 4 <= m) {
      rowBlock<4>(p, a, ak, b + j, bstride, c + j);
      j += 4;
    }
    if (j + 2 <= m) {
      rowBlock<2>(p, a, ak, b + j, bstride, c + j);
      j += 2;
    }
    if (j < m) rowBlock<1>(p, a, ak, b + j, bstride, c + j);
  }
}

// The products run over raw rows, past the element checks of a bounds-checked build; there the
// far corner of every operand is checked first, so a size larger than an array stops the program
// before anything is read or written.
void checkCorner([[maybe_unused]] int rows, [[maybe_unused]] int cols,
                 [[maybe_unused]] const Mat& a) {
#if defined(OVARO_CHECK_BOUNDS)
  if (rows >= 1 && cols >= 1) static_cast<void>(a.at(rows, cols));
#endif
}

}  // namespace

// C = A B. Each C(i, j) is summed from 0 over k = 1..p in increasing order (see rowBlock).
void mmul(int n, int p, int m, const Mat& A, const Mat& B, Mat& C) {
  checkCorner(n, p, A);
  checkCorner(p, m, B);
  checkCorner(n, m, C);
  if (n < 1 || p < 1) return product(n, p, m, nullptr, 0, 0, B, C);
  product(n, p, m, A.at(1, 1), A.cols(), 1, B, C);
}

// C = A' B, each element summed from 0 over r = 1..p as mmul sums it, without forming A'.
void mtmul(int n, int p, int m, const Mat& A, const Mat& B, Mat& C) {
  checkCorner(p, n, A);
  checkCorner(p, m, B);
  checkCorner(n, m, C);
  if (n < 1 || p < 1) return product(n, p, m, nullptr, 0, 0, B, C);
  product(n, p, m, A.at(1, 1), 1, A.cols(), B, C);
}

// C = A (B D)
void mmul3(int n, int p, int q, int m, const Mat& A, const Mat& B, const Mat& D, Mat& C) {
  Mat BD = mat2(1, p, 1, m);
  mmul3(n, p, q, m, A, B, D, C, BD);
}

void mmul3(int n, int p, int q, int m, const Mat& A, const Mat& B, const Mat& D, Mat& C, Mat& BD) {
  mmul(p, q, m, B, D, BD);
  mmul(n, p, m, A, BD, C);
}

// C = A' (B D) + E
void mtransmul(int n, int p, int m, const Mat& A, const Mat& B, const Mat& D, const Mat& E,
               Mat& C) {
  Mat BD = mat2(1, n, 1, m);
  mtransmul(n, p, m, A, B, D, E, C, BD);
}

void mtransmul(int n, int p, int m, const Mat& A, const Mat& B, const Mat& D, const Mat& E, Mat& C,
               Mat& BD) {
  mmul(n, n, m, B, D, BD);
  mtransmuladd(n, p, m, A, BD, E, C);
}

void mtransmuladd(int n, int p, int m, const Mat& A, const Mat& BD, const Mat& E, Mat& C) {
  mtmul(p, n, m, A, BD, C);
  for (int i = 1; i <= p; ++i)
    for (int j = 1; j <= m; ++j) C(i, j) = C(i, j) + E(i, j);
}

namespace {

// C = A' (K A) + diag(V(., k)), showing the operands and the partial products to `trace` when
// there is one. The traced and the untraced entry points share this body so that they cannot
// drift apart by a single rounding.
void quadFormDiag(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C,
                  MatrixTrace* trace, QuadFormWork& work) {
  Mat& KA = work.ka;
  Mat& At = work.at;
  Mat& AtKA = work.atka;
  if (trace != nullptr) {
    trace->matrix("kuc in mmul31tv", 1, m, 1, m, K);
    trace->matrix("a in mmul31tv", 1, m, 1, n, A);
  }
  mmul(m, m, n, K, A, KA);
  if (trace != nullptr) {
    trace->matrix("kuca in mmul31tv", 1, m, 1, n, KA);
    mtrans(m, n, A, At);
    trace->matrix("at in mmul31tv", 1, n, 1, m, At);
  }
  // A' (K A) straight from A: the same terms in the same order as the product with A' formed.
  mtmul(n, m, n, A, KA, AtKA);
  if (trace != nullptr) trace->matrix("atkuca in mmul31tv", 1, n, 1, n, AtKA);
  maddiagcol(n, n, k, AtKA, V, C);
}

}  // namespace

QuadFormWork::QuadFormWork(int n, int m)
    : ka(mat2(1, m, 1, n)), at(mat2(1, n, 1, m)), atka(mat2(1, n, 1, n)) {}

void mmul31tv(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C,
              MatrixTrace* trace) {
  QuadFormWork work(n, m);
  quadFormDiag(n, m, k, A, K, V, C, trace, work);
}

void mmul31tv(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C,
              MatrixTrace* trace, QuadFormWork& work) {
  quadFormDiag(n, m, k, A, K, V, C, trace, work);
}

void mqformdiag(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C) {
  QuadFormWork work(n, m);
  quadFormDiag(n, m, k, A, K, V, C, nullptr, work);
}

void mqformdiag(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C,
                QuadFormWork& work) {
  quadFormDiag(n, m, k, A, K, V, C, nullptr, work);
}

void mtrans(int n, int m, const Mat& A, Mat& B) {
  mtranssub(1, n, 1, m, A, B);
}

void mtranssub(int rlo, int rhi, int clo, int chi, const Mat& A, Mat& B) {
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) B(j, i) = A(i, j);
}

void mtrans3(int rlo, int rhi, int clo, int chi, int dlo, int dhi, const Mat3& A3, Mat3& B3) {
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j)
      for (int k = dlo; k <= dhi; ++k) B3(j, k, i) = A3(i, j, k);
}

// trace(A B)
double mtrace2(int n, int m, const Mat& A, const Mat& B) {
  double sum = 0.0;
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= m; ++j) sum += A(i, j) * B(j, i);
  return sum;
}

// trace(A B C D), one running sum over all four indices rather than through explicit products.
// The terms are added in the nesting order i, j, k, l, each as ((A B) C) D. A term whose A or C
// factor is exactly zero is skipped: with finite factors it is a signed zero, and adding a zero to
// a sum that starts at +0 changes no bit. (The filter passes parameter-derivative slices here,
// which are almost all zeros.)
double mtrace4(int n, int m, const Mat& A, const Mat& B, const Mat& C, const Mat& D) {
  double sum = 0.0;
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j)
      for (int k = 1; k <= m; ++k) {
        const double a = A(i, k);
        if (a == 0.0) continue;
        const double ab = a * B(k, j);
        for (int l = 1; l <= m; ++l) {
          const double c = C(j, l);
          if (c == 0.0) continue;
          sum += ab * c * D(l, i);
        }
      }
  return sum;
}

void mslice3set(int n, int m, int k, const Mat& A, Mat3& A3) {
  mslice3setsub(1, n, 1, m, k, A, A3);
}

void mslice3setsub(int rlo, int rhi, int clo, int chi, int k, const Mat& A, Mat3& A3) {
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) A3(i, j, k) = A(i, j);
}

void mslice3get(int n, int m, int k, const Mat3& A3, Mat& A) {
  mslice3getsub(1, n, 1, m, k, A3, A);
}

void mslice3getsub(int rlo, int rhi, int clo, int chi, int k, const Mat3& A3, Mat& A) {
  for (int i = rlo; i <= rhi; ++i)
    for (int j = clo; j <= chi; ++j) A(i, j) = A3(i, j, k);
}

void vcolset(int n, int k, const Mat& A, Mat& B) {
  vcolsetsub(1, n, k, A, B);
}

void vcolsetsub(int lo, int hi, int k, const Mat& A, Mat& B) {
  for (int i = lo; i <= hi; ++i) B(i, k) = A(i, 1);
}

void vcolget(int n, int k, const Mat& A, Mat& B) {
  vcolgetsub(1, n, k, A, B);
}

void vcolgetsub(int lo, int hi, int k, const Mat& A, Mat& B) {
  for (int i = lo; i <= hi; ++i) B(i, 1) = A(i, k);
}

void vcoladd(int n, int k, const Mat& A, const Mat& B, Mat& C) {
  for (int i = 1; i <= n; ++i) C(i, 1) = A(i, 1) + B(i, k);
}

void vrowset(int n, int k, const Mat& A, Mat& B) {
  for (int j = 1; j <= n; ++j) B(k, j) = A(1, j);
}

// Crout's method with implicit scaling. L (unit lower, the unit diagonal set at the end) and U
// are kept apart; the permuted matrix P A is never formed, row i of it is read as row perm[i] of
// A. The pivot of column j is the candidate row whose element is largest relative to the largest
// element of its own row, a later row winning a tie. Nothing guards a singular matrix: a zero row
// gives an infinite scale and a zero pivot is divided by, so the inverse comes back with
// infinities or NaNs. Callers that can meet a singular matrix test their inputs themselves.
MinvWork::MinvWork(int n)
    : perm(imat2(1, n, 1, 1)),
      L(mat2(1, n, 1, n)),
      U(mat2(1, n, 1, n)),
      scale(vec1(1, n)),
      b(vec1(1, n)),
      y(vec1(1, n)),
      x(vec1(1, n)) {}

void minv(int n, const Mat& A, Mat& Ainv) {
  MinvWork work(n);
  minv(n, A, Ainv, work);
}

void minv(int n, const Mat& A, Mat& Ainv, MinvWork& work) {
  IMat& perm = work.perm;
  Mat& L = work.L;
  Mat& U = work.U;
  Vec& scale = work.scale;
  // The factors start from zero, as fresh arrays would, so that a reused scratch gives the same
  // bits: the row swaps below move elements not yet computed.
  for (int i = 1; i <= n; ++i)
    for (int j = 1; j <= n; ++j) L(i, j) = U(i, j) = 0.0;
  for (int i = 1; i <= n; ++i) perm(i, 1) = i;

  for (int i = 1; i <= n; ++i) {
    double big = 0.0;
    for (int j = 1; j <= n; ++j) big = std::max(big, std::fabs(A(i, j)));
    scale(i) = 1.0 / big;
  }

  // Element (r, c) of the combined factor: below the diagonal of row r it lives in L, on and
  // above it in U.
  auto factor = [&L, &U](int r, int c) -> double& { return c < r ? L(r, c) : U(r, c); };

  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i < j; ++i) {
      double sum = 0.0;
      for (int k = 1; k < i; ++k) sum += L(i, k) * U(k, j);
      U(i, j) = A(perm(i, 1), j) - sum;
    }
    // A size that is NaN (an infinite scale times a zero) never wins; when no candidate wins,
    // row j keeps the pivot.
    double big = 0.0;
    int pivot = j;
    for (int i = j; i <= n; ++i) {
      double sum = 0.0;
      for (int k = 1; k < j; ++k) sum += L(i, k) * U(k, j);
      const double s = A(perm(i, 1), j) - sum;
      if (i == j)
        U(j, j) = s;
      else
        L(i, j) = s;
      const double size = scale(i) * std::fabs(s);
      if (size >= big) {
        big = size;
        pivot = i;
      }
    }
    if (pivot != j) {
      for (int c = 1; c <= n; ++c) std::swap(factor(j, c), factor(pivot, c));
      std::swap(scale(j), scale(pivot));
      std::swap(perm(j, 1), perm(pivot, 1));
    }
    for (int i = j + 1; i <= n; ++i) L(i, j) = L(i, j) / U(j, j);
  }
  for (int i = 1; i <= n; ++i) L(i, i) = 1.0;

  // Column c of the inverse solves L U x = P e_c.
  Vec& b = work.b;
  Vec& y = work.y;
  Vec& x = work.x;
  for (int c = 1; c <= n; ++c) {
    for (int i = 1; i <= n; ++i) b(i) = perm(i, 1) == c ? 1.0 : 0.0;
    for (int i = 1; i <= n; ++i) {
      double sum = 0.0;
      for (int k = 1; k < i; ++k) sum += L(i, k) * y(k);
      y(i) = b(i) - sum;
    }
    for (int i = n; i >= 1; --i) {
      double sum = 0.0;
      for (int k = i + 1; k <= n; ++k) sum += U(i, k) * x(k);
      x(i) = (y(i) - sum) / U(i, i);
    }
    for (int i = 1; i <= n; ++i) Ainv(i, c) = x(i);
  }
}

double macheps() {
  // volatile keeps every sum a rounded double in memory: the compiler may neither fold the loop
  // nor compare a sum held in a wider register.
  volatile double e = 1.0;
  volatile double sum = 1.0 + e;
  while (sum != 1.0) {
    e = e / 2.0;
    sum = 1.0 + e;
  }
  return e;
}

void mmov3dsub(int nrl, int nrh, int ncl, int nch, int ndl, int l3old, int l3new, const Mat3& from,
               Mat3& to, Prompter& prompter) {
  if (l3old > l3new) prompter.inform("l3old greater than l3new in mmov3dsub", "Warning!");
  // Stop where either array ends: a caller's l3old never makes us read or write past one.
  const int last = std::min({l3old, from.dhi(), to.dhi()});
  mmov3sub(nrl, nrh, ncl, nch, ndl, last, from, to);
}

Mat3 ModMatSize(int nrl, int nrh, int ncl, int nch, int ndl, int l3old, int l3new, Mat3 array,
                Prompter& prompter) {
  if (l3old > l3new) prompter.inform("l3old greater than l3new in ModMatSize", "Warning!");
  // The old array was handed over to us, so it serves as the intermediate copy itself.
  Mat3 result = mat3(nrl, nrh, ncl, nch, ndl, l3new);
  mmov3dsub(nrl, nrh, ncl, nch, ndl, l3old, l3new, array, result, prompter);
  return result;
}

}  // namespace ovaro
