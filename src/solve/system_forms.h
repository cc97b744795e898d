// The regular system form x(t+1) = A x(t) + B u(t) + c(t), and the bookkeeping that moves the
// uncertain parameters theta into and out of A, B and c.
//
// Arrays follow the matrix library: variables count from 1, periods from 0, sizes come first.
// Column vectors (x, u, c, theta) are n x 1 matrices. cs holds the constant term as one column per
// period, 0..nt-1.
//
// ITHN places the uncertain parameters: one row per mapped element, column 1 the matrix (0 = A,
// 1 = B, 2 = c), columns 2 and 3 the row and column of the element the parameter occupies.
#pragma once

#include "numeric/arrays.h"
#include "numeric/prompter.h"
#include "solve/trace.h"

namespace ovaro {

// The three kinds of element a parameter can occupy.
inline constexpr int kIthnA = 0;
inline constexpr int kIthnB = 1;
inline constexpr int kIthnC = 2;

// Pindyck form to regular form: with ia0inv the inverse of I - A0, A = ia0inv A1,
// B = ia0inv B1, capC = ia0inv C1 and D_j = ia0inv DDAG_j. All six products are formed whatever
// the maximum lead; `maxLead` only chooses which lead matrices are dumped. A singular I - A0 is
// not detected: the inverse gives what it gives.
int iatoi(int n, int m, int l, int maxLead, const Mat& a0, const Mat& a1, const Mat& b1,
          const Mat& c1, const Mat& ddag1, const Mat& ddag2, const Mat& ddag3, Mat& a, Mat& b,
          Mat& capc, Mat& d1, Mat& d2, Mat& d3, const SolveTrace& trace);

// Validates ITHN and builds the occupancy tables: napar (n x n), nbpar (n x m) and ncpar (n x 1)
// hold at each element the number k of the parameter occupying it, 0 elsewhere. nmap (np x 1)
// says how many ITHN rows belong to each parameter. The tables must come in zeroed.
//
// A row with 0 in column 2 or 3 is reported and ends the handling of its parameter: the
// parameter's remaining rows are not counted, so later parameters read rows one step early.
// That is how the check has always worked, and models rely on the placements it produces. An
// element outside its matrix is reported and not placed.
void ithnCheck(int n, int m, int np, const IMat& nmap, const IMat& ithn, IMat& napar, IMat& nbpar,
               IMat& ncpar, Prompter& prompter, const SolveTrace& trace);

// Writes theta into the system: parameter k into the element ITHN row k names. A parameter of c
// occupies row i of c in every period, whichever column ITHN gives (with a warning when it names
// a column beyond the first: only a c vector is supported, not a C matrix).
void MapThetaToAbc(int n, int m, int nt, int np, const IMat& ithn, const Mat& theta, Mat& a, Mat& b,
                   Mat& cs, Prompter& prompter, const SolveTrace& trace);

// Derivatives of A, B and C with respect to theta: ath(j, k, i) = dA(i, j)/dtheta_k, bth(j, k, i)
// = dB(i, j)/dtheta_k, cth(j, k, i) = dC(i, j)/dtheta_k. Ones where ITHN places a parameter; the
// arrays must come in zeroed (ath 1..n x 1..np x 1..n, bth 1..m x .., cth 1..l x ..).
void ATheta(int n, int m, int l, int np, const IMat& ithn, Mat3& ath, Mat3& bth, Mat3& cth,
            const SolveTrace& trace);

// Keeps the true system while a stochastic run perturbs A, B and cs, and puts it back.
void StoreATrue(int n, int m, int nt, const Mat& a, const Mat& b, const Mat& cs, Mat& atrue,
                Mat& btrue, Mat& ctruetv);
void RestoreA(int n, int m, int nt, const Mat& atrue, const Mat& btrue, const Mat& ctruetv, Mat& a,
              Mat& b, Mat& cs);

// axbuc = (A x) + ((B u) + c), all columns.
void CompAxBuc(int n, int m, const Mat& a, const Mat& b, const Mat& c, const Mat& x, const Mat& u,
               Mat& axbuc);

}  // namespace ovaro
