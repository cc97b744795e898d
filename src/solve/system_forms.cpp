#include "solve/system_forms.h"

#include <string>

#include "numeric/matrix_ops.h"

namespace ovaro {

namespace {

constexpr const char* kInputErrorCaption = "Error in input.";

}  // namespace

int iatoi(int n, int m, int l, int maxLead, const Mat& a0, const Mat& a1, const Mat& b1,
          const Mat& c1, const Mat& ddag1, const Mat& ddag2, const Mat& ddag3, Mat& a, Mat& b,
          Mat& capc, Mat& d1, Mat& d2, Mat& d3, const SolveTrace& trace) {
  Mat ia0 = mat2(1, n, 1, n);
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) ia0(i, j) = (i == j ? 1.0 : 0.0) - a0(i, j);
  }
  Mat work = mat2(1, n, 1, n);
  mmov(n, n, ia0, work);
  Mat ia0inv = mat2(1, n, 1, n);
  minv(n, work, ia0inv);

  mmul(n, n, n, ia0inv, a1, a);
  mmul(n, n, m, ia0inv, b1, b);
  mmul(n, n, l, ia0inv, c1, capc);
  mmul(n, n, n, ia0inv, ddag1, d1);
  mmul(n, n, n, ia0inv, ddag2, d2);
  mmul(n, n, n, ia0inv, ddag3, d3);

  if (!trace.on(SolveTopic::PindyckToRegular)) return 1;
  DebugFile& f = trace.file();
  f.dumpMatrix("a0 in iatoi", 1, n, 1, n, a0);
  f.dumpMatrix("a1 in iatoi", 1, n, 1, n, a1);
  f.dumpMatrix("b1 in iatoi", 1, n, 1, m, b1);
  f.dumpMatrix("c1 in iatoi", 1, n, 1, l, c1);
  if (maxLead >= 1) f.dumpMatrix("ddag1 in iatoi", 1, n, 1, n, ddag1);
  if (maxLead >= 2) f.dumpMatrix("ddag2 in iatoi", 1, n, 1, n, ddag2);
  if (maxLead >= 3) f.dumpMatrix("ddag3 in iatoi", 1, n, 1, n, ddag3);
  f.dumpMatrix("ia0 in iatoi", 1, n, 1, n, ia0);
  f.dumpMatrix("ia0inv in iatoi", 1, n, 1, n, ia0inv);
  f.dumpMatrix("a in iatoi", 1, n, 1, n, a);
  f.dumpMatrix("b in iatoi", 1, n, 1, m, b);
  f.dumpMatrix("capc in iatoi", 1, n, 1, l, capc);
  f.dumpMatrix("d1 in iatoi", 1, n, 1, n, d1);
  f.dumpMatrix("d2 in iatoi", 1, n, 1, n, d2);
  f.dumpMatrix("d3 in iatoi", 1, n, 1, n, d3);
  return trace.ok();
}

void ithnCheck(int n, int m, int np, const IMat& nmap, const IMat& ithn, IMat& napar, IMat& nbpar,
               IMat& ncpar, Prompter& prompter, const SolveTrace& trace) {
  const int rows = ithn.rhi();
  int r = 0;
  for (int k = 1; k <= np; ++k) {
    for (int e = 1; e <= nmap(k, 1); ++e) {
      ++r;
      if (r > rows) break;  // nmap asks for more rows than ITHN holds
      const int kind = ithn(r, 1);
      const int row = ithn(r, 2);
      const int col = ithn(r, 3);
      if (row == 0 || col == 0) {
        prompter.inform("Elements in columns 2 and 3 of ITHN must be > 0", kInputErrorCaption);
        break;
      }
      // A c parameter occupies row i of the c vector whichever column ITHN names.
      const int rowLimit = n;
      const int colLimit = kind == kIthnA ? n : kind == kIthnB ? m : 1 << 30;
      if (kind >= kIthnA && kind <= kIthnC &&
          (row < 1 || row > rowLimit || col < 1 || col > colLimit)) {
        prompter.inform("Row " + std::to_string(r) + " of ITHN names element (" +
                            std::to_string(row) + ", " + std::to_string(col) +
                            "), which lies outside its matrix. The parameter is not placed there.",
                        kInputErrorCaption);
        continue;
      }
      switch (kind) {
        case kIthnA:
          napar(row, col) = k;
          break;
        case kIthnB:
          nbpar(row, col) = k;
          break;
        case kIthnC:
          ncpar(row, 1) = k;
          break;
        default:
          prompter.inform("Elements in column 1 of ITHN must be 0, 1 or 2.", kInputErrorCaption);
          break;
      }
    }
  }
  if (!trace.on(SolveTopic::UncertainParameters)) return;
  DebugFile& f = trace.file();
  f.dumpIntMatrix("nmap", 1, np, 1, 1, nmap);
  f.dumpIntMatrix("napar", 1, n, 1, n, napar);
  f.dumpIntMatrix("nbpar", 1, n, 1, m, nbpar);
  f.dumpIntMatrix("ncpar", 1, n, 1, 1, ncpar);
}

void MapThetaToAbc(int n, int m, int nt, int np, const IMat& ithn, const Mat& theta, Mat& a, Mat& b,
                   Mat& cs, Prompter& prompter, const SolveTrace& trace) {
  for (int k = 1; k <= np; ++k) {
    const int kind = ithn(k, 1);
    const int i = ithn(k, 2);
    const int j = ithn(k, 3);
    // ITHN check reports elements outside their matrix; here they are simply not written.
    if (i < 1 || i > n) continue;
    switch (kind) {
      case kIthnA:
        if (j >= 1 && j <= n) a(i, j) = theta(k, 1);
        break;
      case kIthnB:
        if (j >= 1 && j <= m) b(i, j) = theta(k, 1);
        break;
      case kIthnC:
        if (j > 1) {
          prompter.inform(
              "Olf portion of code is presently \t\t\t\t\t\r able to accomodate only a 'c' "
              "vector and not a \t\t\t\t\t\r 'C' matrix.",
              "Warning!!!!");
        }
        for (int t = 0; t <= nt - 1; ++t) cs(i, t) = theta(k, 1);
        break;
      default:
        break;
    }
  }
  if (!trace.on(SolveTopic::UncertainParameters)) return;
  DebugFile& f = trace.file();
  f.dumpMatrix("a in MapThetaToAbc", 1, n, 1, n, a);
  f.dumpMatrix("b in MapThetaToAbc", 1, n, 1, m, b);
  f.dumpMatrix("cs in MapThetaToAbc", 1, n, 0, nt - 1, cs);
}

void ATheta(int n, int m, int l, int np, const IMat& ithn, Mat3& ath, Mat3& bth, Mat3& cth,
            const SolveTrace& trace) {
  const bool traced = trace.on(SolveTopic::UncertainParameters);
  if (traced) trace.file().dumpIntMatrix("ithn in ATheta", 1, np, 1, 3, ithn);
  for (int k = 1; k <= np; ++k) {
    const int kind = ithn(k, 1);
    const int i = ithn(k, 2);
    const int j = ithn(k, 3);
    if (i < 1 || i > n || j < 1) continue;
    if (kind == kIthnA && j <= n) ath(j, k, i) = 1.0;
    if (kind == kIthnB && j <= m) bth(j, k, i) = 1.0;
    if (kind == kIthnC && j <= l) cth(j, k, i) = 1.0;
  }
  if (!traced) return;
  DebugFile& f = trace.file();
  f.dumpMatrix3("ath in ATheta", 1, n, 1, np, 1, n, ath);
  f.dumpMatrix3("bth in ATheta", 1, m, 1, np, 1, n, bth);
  f.dumpMatrix3("cth in ATheta", 1, l, 1, np, 1, n, cth);
}

void StoreATrue(int n, int m, int nt, const Mat& a, const Mat& b, const Mat& cs, Mat& atrue,
                Mat& btrue, Mat& ctruetv) {
  mmov(n, n, a, atrue);
  mmov(n, m, b, btrue);
  mmovsub(1, n, 0, nt - 1, cs, ctruetv);
}

void RestoreA(int n, int m, int nt, const Mat& atrue, const Mat& btrue, const Mat& ctruetv, Mat& a,
              Mat& b, Mat& cs) {
  mmov(n, n, atrue, a);
  mmov(n, m, btrue, b);
  mmovsub(1, n, 0, nt - 1, ctruetv, cs);
}

void CompAxBuc(int n, int m, const Mat& a, const Mat& b, const Mat& c, const Mat& x, const Mat& u,
               Mat& axbuc) {
  Mat ax = mat2(1, n, 1, 1);
  Mat bu = mat2(1, n, 1, 1);
  Mat buc = mat2(1, n, 1, 1);
  mmul(n, n, 1, a, x, ax);
  mmul(n, m, 1, b, u, bu);
  madd(n, 1, bu, c, buc);
  madd(n, 1, ax, buc, axbuc);
}

}  // namespace ovaro
