// The small matrix library the solvers call: copies, sums, products, transposes, traces, slices
// of three-index arrays, the inverse and the machine epsilon.
//
// Conventions: sizes come first, then inputs, then outputs, because solvers pass sizes smaller
// than the arrays they hold. Unless bounds are given, every index runs from 1: "n x m" means rows
// 1..n and columns 1..m. The output array is supplied by the caller, already allocated with at
// least the bounds the operation writes, and must not be one of the inputs. Every loop runs in
// increasing index order and every sum is accumulated from 0 in the order stated, so that results
// are the same to the bit from one build to the next.
#pragma once

#include <string_view>

#include "numeric/arrays.h"
#include "numeric/prompter.h"

namespace ovaro {

// Receives the operands and intermediate products of a traced operation (the debug print file
// implements it). Rows rlo..rhi and columns clo..chi of `a` are the part to show.
class MatrixTrace {
 public:
  virtual ~MatrixTrace() = default;
  virtual void matrix(std::string_view label, int rlo, int rhi, int clo, int chi, const Mat& a) = 0;
};

// A = 0 (n x m).
void mzero(int n, int m, Mat& A);
// A = 0 over rows rlo..rhi, columns clo..chi.
void mzerosub(int rlo, int rhi, int clo, int chi, Mat& A);
// A(i, j) = 1 if i = j, else 0 (n x m).
void mident(int n, int m, Mat& A);
// B = A (n x m).
void mmov(int n, int m, const Mat& A, Mat& B);
// B = A over the given bounds.
void mmovsub(int rlo, int rhi, int clo, int chi, const Mat& A, Mat& B);
// B3 = A3 over the given bounds.
void mmov3sub(int rlo, int rhi, int clo, int chi, int dlo, int dhi, const Mat3& A3, Mat3& B3);
// B = -A (n x m).
void mneg(int n, int m, const Mat& A, Mat& B);
// C = A + B (n x m).
void madd(int n, int m, const Mat& A, const Mat& B, Mat& C);
// D = A + B + C, summed left to right.
void madd3(int n, int m, const Mat& A, const Mat& B, const Mat& C, Mat& D);
// E = A + B + C + D, summed left to right.
void madd4(int n, int m, const Mat& A, const Mat& B, const Mat& C, const Mat& D, Mat& E);
// C = A - B (n x m).
void msub(int n, int m, const Mat& A, const Mat& B, Mat& C);
// C = A - B over the given bounds.
void msubsub(int rlo, int rhi, int clo, int chi, const Mat& A, const Mat& B, Mat& C);
// C = A, except C(i, i) = A(i, i) + V(i, k): column k of a per-period array added to the diagonal.
void maddiagcol(int n, int m, int k, const Mat& A, const Mat& V, Mat& C);
// C (n x m) = A (n x p) B (p x m); each element accumulated from 0 over k = 1..p.
void mmul(int n, int p, int m, const Mat& A, const Mat& B, Mat& C);
// C (n x m) = A' B for A p x n and B p x m: the terms and their order of mmul with A' formed.
void mtmul(int n, int p, int m, const Mat& A, const Mat& B, Mat& C);
// C (n x m) = A (n x p) (B (p x q) D (q x m)), through a scratch p x m product.
void mmul3(int n, int p, int q, int m, const Mat& A, const Mat& B, const Mat& D, Mat& C);
// The same with the scratch product (at least p x m) given.
void mmul3(int n, int p, int q, int m, const Mat& A, const Mat& B, const Mat& D, Mat& C, Mat& BD);
// C (p x m) = A' (B D) + E, for A n x p, B n x n, D n x m, E p x m.
void mtransmul(int n, int p, int m, const Mat& A, const Mat& B, const Mat& D, const Mat& E, Mat& C);
// The same with the scratch product B D (at least n x m) given, so that nothing is allocated.
void mtransmul(int n, int p, int m, const Mat& A, const Mat& B, const Mat& D, const Mat& E, Mat& C,
               Mat& BD);
// Its second half: C (p x m) = A' BD + E with the product BD (n x m) already formed.
void mtransmuladd(int n, int p, int m, const Mat& A, const Mat& BD, const Mat& E, Mat& C);
// Scratch of the quadratic form A' K A for A up to m x n: K A, A' and A' K A. Made once by a
// caller that forms the product in a loop, so that the loop allocates nothing.
struct QuadFormWork {
  QuadFormWork(int n, int m);
  Mat ka, at, atka;
};
// C (n x n) = A' (K A) + diag(V(., k)), for A m x n and K m x m. With a trace, the operands and
// products are shown as "kuc in mmul31tv" (K), "a in mmul31tv" (A), "kuca in mmul31tv" (K A),
// "at in mmul31tv" (A') and "atkuca in mmul31tv" (A' K A).
void mmul31tv(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C,
              MatrixTrace* trace);
void mmul31tv(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C,
              MatrixTrace* trace, QuadFormWork& work);
// The same product as mmul31tv, never traced.
void mqformdiag(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C);
void mqformdiag(int n, int m, int k, const Mat& A, const Mat& K, const Mat& V, Mat& C,
                QuadFormWork& work);
// B (m x n) = A' for A n x m.
void mtrans(int n, int m, const Mat& A, Mat& B);
// B(j, i) = A(i, j) over the given bounds of A.
void mtranssub(int rlo, int rhi, int clo, int chi, const Mat& A, Mat& B);
// B3(j, k, i) = A3(i, j, k) over the given bounds of A3.
void mtrans3(int rlo, int rhi, int clo, int chi, int dlo, int dhi, const Mat3& A3, Mat3& B3);
// trace(A B) = sum over i (outer), j (inner) of A(i, j) B(j, i), for A n x m and B m x n.
double mtrace2(int n, int m, const Mat& A, const Mat& B);
// trace(A B C D) for A, C n x m and B, D m x n: the sum of A(i,k) B(k,j) C(j,l) D(l,i) with i and
// j (1..n) as the outer loops and k and l (1..m) as the inner ones.
double mtrace4(int n, int m, const Mat& A, const Mat& B, const Mat& C, const Mat& D);
// A3(i, j, k) = A(i, j), i = 1..n, j = 1..m.
void mslice3set(int n, int m, int k, const Mat& A, Mat3& A3);
// The same over the given bounds.
void mslice3setsub(int rlo, int rhi, int clo, int chi, int k, const Mat& A, Mat3& A3);
// A(i, j) = A3(i, j, k), i = 1..n, j = 1..m.
void mslice3get(int n, int m, int k, const Mat3& A3, Mat& A);
// The same over the given bounds.
void mslice3getsub(int rlo, int rhi, int clo, int chi, int k, const Mat3& A3, Mat& A);
// B(i, k) = A(i, 1), i = 1..n: a column vector stored as column k.
void vcolset(int n, int k, const Mat& A, Mat& B);
// The same over lo..hi.
void vcolsetsub(int lo, int hi, int k, const Mat& A, Mat& B);
// B(i, 1) = A(i, k), i = 1..n.
void vcolget(int n, int k, const Mat& A, Mat& B);
// The same over lo..hi.
void vcolgetsub(int lo, int hi, int k, const Mat& A, Mat& B);
// C(i, 1) = A(i, 1) + B(i, k), i = 1..n.
void vcoladd(int n, int k, const Mat& A, const Mat& B, Mat& C);
// B(k, j) = A(1, j), j = 1..n.
void vrowset(int n, int k, const Mat& A, Mat& B);

// Ainv = inverse of A (n x n), by Crout's LU decomposition with partial pivoting by implicit
// scaling, a later row winning a tie for the pivot. A singular matrix is not detected: zero
// pivots are divided by, and infinities or NaNs flow into the result without a message.
void minv(int n, const Mat& A, Mat& Ainv);
// Scratch of minv for matrices up to n x n; with it, an inversion allocates nothing and computes
// exactly what minv computes.
struct MinvWork {
  explicit MinvWork(int n);
  IMat perm;
  Mat L, U;
  Vec scale, b, y, x;
};
void minv(int n, const Mat& A, Mat& Ainv, MinvWork& work);

// The first power of two whose addition to 1.0 is lost (2^-53 for IEEE doubles), found by
// halving from 1.0. Computed once at start-up and kept by the caller.
double macheps();

// Returns a three-index array whose third index runs ndl..l3new, holding the old contents for
// ndl..l3old; the old array is consumed. When l3old > l3new it warns "l3old greater than l3new in
// ModMatSize" under "Warning!" (and the copy warns for itself) and goes on; only the part that
// fits the new array is kept, since nothing may be written outside an array.
Mat3 ModMatSize(int nrl, int nrh, int ncl, int nch, int ndl, int l3old, int l3new, Mat3 array,
                Prompter& prompter);
// Copies from(i, j, k) to to(i, j, k) for k in ndl..l3old; warns "l3old greater than l3new in
// mmov3dsub" under "Warning!" when l3old > l3new, and then copies only as far as `to` reaches.
void mmov3dsub(int nrl, int nrh, int ncl, int nch, int ndl, int l3old, int l3new, const Mat3& from,
               Mat3& to, Prompter& prompter);

}  // namespace ovaro
