// The Model: the one problem specification that the workbench edits, saves and solves.
//
// It holds the sizes of the problem (each kept both as the decimal text the user typed and as
// its number), the specification flags chosen in the specification dialogs, the labels of every
// variable, period and uncertain parameter, a free description, and every input matrix as a Text
// matrix. Which matrices exist, and their shapes, follow from the sizes and flags; they are made
// by allocateModelArrays and never silently resized.
//
// The Model is a plain record: whoever owns it (a workbench window, a batch job, a test) passes
// it to the routines that read or change it.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "model/options.h"
#include "model/text_matrix.h"

namespace ovaro {

inline constexpr int kModelFileVersion = 321;
inline constexpr std::size_t kDescriptionBytes =
    32000;  // the description's buffer, terminator included
inline constexpr int kModelAcronymChars = 8;
inline constexpr int kModelNameChars = 47;

// A count kept twice: the text of the Size dialog and the model file, and the integer read from it.
struct Count {
  std::string text;
  int value = 0;

  // Sets the number and writes its decimal text.
  void set(int v);
  // Sets the text and converts it as a plain decimal integer (text that is not a number reads 0).
  void setText(std::string t);
  friend bool operator==(const Count&, const Count&) = default;
};

struct Dimensions {
  Count n;                    // state variables
  Count m;                    // control variables
  Count l;                    // exogenous variables
  Count initialPeriod;        // number of the first period
  Count terminalPeriod;       // number of the last period
  Count nt;                   // time periods: terminalPeriod - initialPeriod + 1
  Count ntMinus1;             // nt - 1, the last period index
  Count maxLead;              // maximum lead of forward variables: 1, 2 or 3, else 0
  Count iterlim;              // iteration limit of the forward-variable loop
  std::string toleranceText;  // convergence tolerance as typed
  double tolerance = 0.0;
  Count np;   // uncertain parameters
  Count nmc;  // Monte Carlo runs
  Count ny;   // observation variables

  // Recomputes nt and nt - 1 (numbers and texts) from the two period numbers.
  void recomputePeriods();
  // Sets the tolerance text and converts it as a decimal number.
  void setToleranceText(std::string t);
  friend bool operator==(const Dimensions&, const Dimensions&) = default;
};

// The specification flags: each holds the id of the chosen option (see options.h), 0 for none.
struct SpecFlags {
  int stochTerms = 0;
  int criterionForm = 0;
  int systemForm = 0;
  int forwardVars = 0;
  int policyToParam = 0;
  int zForm = 0;
  int wForm = 0;
  int lambdaForm = 0;
  int xdesForm = 0;
  int udesForm = 0;
  int randomSource = 0;
  int option450 = 0;               // 450 or 451: kept and saved, shown by no dialog
  int option452 = 0;               // 452 or 453: likewise
  std::string reservedWord = "0";  // a stochastic-group word with no user; written back as read
  friend bool operator==(const SpecFlags&, const SpecFlags&) = default;
};

// The switches (0/1) of the "Source of Random Terms" dialog.
struct RandomSwitches {
  int uncertainParameters = 0;    // "Uncertain Parameters"
  int certainButDifferent = 0;    // "Certain But Different From Mean"
  int uncertainStates = 0;        // "Uncertain State Variables - if meas error"
  int systemEquations = 0;        // "System Equations"
  int measurementEquations = 0;   // "Measurement Equations"
  int timeVaryingParameters = 0;  // "Time-Varying Parameter Eq"
  friend bool operator==(const RandomSwitches&, const RandomSwitches&) = default;
};

// The results-display words saved with the model: seven 0/1 words, of which the third says time
// periods are shown as columns and the fourth as rows, and the orientation derived from them.
struct ResultsDisplayWords {
  static constexpr int kCount = 7;
  static constexpr int kPeriodsAsColumnsWord = 2;  // index of the third word
  static constexpr int kPeriodsAsRowsWord = 3;     // index of the fourth word
  std::array<int, kCount> words{};
  int orientation = opt::kPeriodsAsRows;  // 3450 Rows or 3454 Columns
  friend bool operator==(const ResultsDisplayWords&, const ResultsDisplayWords&) = default;
};

// Every input matrix of the Model, in the order of the model file.
enum class MatrixId {
  A,
  B,
  C,
  D1,
  D2,
  D3,
  A0,
  A1,
  B1,
  C1,
  DHAT1,
  DHAT2,
  DHAT3,
  Z,
  ZT,
  X0,
  W,
  WN,
  WT,
  LAMBDA,
  LAMBDAT,
  XDES,
  XDEST,
  UDES,
  UDEST,
  Q,
  XSIS,
  TH0,
  TH0DIFF,
  SITT0,
  ITHN,
  D,
  H,
  SIXX0,
  SITX0,
  R,
  GAM,
  ZETAS,
  ETAS,
  TH0DEV,
  X0DEV,
  G,
  g,
  N,
};
inline constexpr int kMatrixCount = static_cast<int>(MatrixId::N) + 1;

// The extent of one side of a matrix, in terms of the Model's sizes.
enum class Extent { N, M, L, NP, NY, NT, NTm1, One, Three };

struct MatrixSpec {
  MatrixId id;
  const char* name;  // "A", "XDEST", "g", ...
  Extent rows;
  Extent cols;
  const char* title;  // the matrix editor's title
};

// The specification of every matrix, indexed by MatrixId.
const MatrixSpec& matrixSpec(MatrixId id);
// The matrix of that name ("A", "g", "SITT0", ...), if any.
std::optional<MatrixId> matrixByName(std::string_view name);

// The label tables of the Model.
enum class LabelKind { States, Controls, Exogenous, Periods, Observations, Parameters };

struct Model {
  int fileVersion = 0;      // version of the model file last read
  std::string acronym;      // the Name dialog's "Acronym", at most 8 characters
  std::string name;         // the Name dialog's "Name", at most 47 characters
  std::string description;  // at most 31999 bytes

  Dimensions dims;
  SpecFlags flags;
  RandomSwitches randomSwitches;
  ResultsDisplayWords display;

  LabelTable states;
  LabelTable controls;
  LabelTable exogenous;
  LabelTable periods;  // acronyms only
  LabelTable observations;
  LabelTable parameters;

  bool allocated = false;  // set by allocateModelArrays, cleared by freeModelArrays

  // The matrix, or nullptr when the Model does not hold it.
  const TextMatrix* matrix(MatrixId id) const;
  TextMatrix* matrix(MatrixId id);
  bool holds(MatrixId id) const { return matrix(id) != nullptr; }
  // Replaces (or adds) one matrix; the transformations and tests use it.
  void setMatrix(MatrixId id, TextMatrix m);
  void dropMatrix(MatrixId id);
  void dropAllMatrices();

  LabelTable& labels(LabelKind kind);
  const LabelTable& labels(LabelKind kind) const;

 private:
  std::array<std::optional<TextMatrix>, kMatrixCount> matrices_;
};

// Whether a stochastic-terms choice carries the additive system noise (Q, XSIS): every choice but
// Deterministic (and none).
bool hasNoiseTerms(int stochTerms);
// Whether it carries uncertain parameters (TH0, TH0DIFF, SITT0, ITHN).
bool hasUncertainParameters(int stochTerms);

// The number of rows or columns an extent stands for in this Model (never below 0).
int extentOf(const Model& model, Extent e);
int rowsOf(const Model& model, MatrixId id);
int colsOf(const Model& model, MatrixId id);

// Whether the flags call for the matrix: it is allocated then.
bool calledFor(const Model& model, MatrixId id);
// Whether the model file holds the matrix: the lead matrices only up to the maximum lead, the
// measurement-error matrices only under measurement error, N only with the policy-to-parameter
// effect. (A forward-variable model whose maximum lead is not 1, 2 or 3 has no lead matrix in
// its file.)
bool storedInFile(const Model& model, MatrixId id);
// The maximum lead is usable: forward variables are on and the lead is 1, 2 or 3.
bool leadIsValid(const Model& model);

// Allocates every label table (blank), empties the description and allocates every matrix the
// flags call for, with every cell "0"; sets the allocated mark.
void allocateModelArrays(Model& model);
// Releases what allocateModelArrays made.
void freeModelArrays(Model& model);
// File: New. Every size 0 with empty text, empty version, acronym, name and description, every
// flag and switch word 0, no arrays.
void clearModel(Model& model);
// Resets all six label tables to blank acronyms and names, keeping their lengths.
void blankLabels(Model& model);

// Largest sizes the workbench accepts for one model. A model file that declares more is taken to
// be damaged: its sizes could not be read back from a file of the size Ovaro reads anyway.
inline constexpr int kMaxVariables = 1000;       // each of n, m, l, np, ny
inline constexpr int kMaxPeriods = 10000;        // nt
inline constexpr int kMaxRuns = 1000000;         // nmc
inline constexpr long long kMaxCells = 1000000;  // Text-matrix cells of all matrices together

// Checks the sizes before the arrays are allocated. Returns an empty string when they are
// acceptable, else a sentence naming each size that is out of range.
std::string checkSizes(const Model& model);

}  // namespace ovaro
