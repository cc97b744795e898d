// The matrix editor: the one place where the cells of a Text matrix are typed in.
//
// An edit works on its own copy of the matrix. The editor shows the copy as a vertical stack of
// blocks of at most four columns, each headed by the column acronyms and each row led by its row
// acronym; every cell is a right-aligned field of at most 15 characters (what a cell holds). The
// editor's OK moves the typed texts into the copy and closes it; Cancel closes it without reading
// them. The copy goes back into the Model only when the edit ends (the "Finished Editing" box is
// dismissed), so the order of use is: type, OK, then dismiss the box. Dismissing the box first
// writes back the unchanged copy.
//
// Nothing typed is refused: a text that does not read as a plain number is only marked (colour
// and tooltip saying what it will count as), since the Model keeps cells as text and converts
// them where a computation needs them. A block of numbers copied from a spreadsheet or a
// numerical session (separated by tabs, blanks and line breaks) is pasted into the cells from the
// focused one, right and down, cut off at the matrix's edges.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QDialog>

#include "model/text_matrix.h"

class QLineEdit;
class QScrollArea;

namespace ovaro::ui {

// Command ids of the editor's Edit menu.
namespace editor_ids {
inline constexpr int kCut = 1200, kCopy = 1202, kPaste = 1204;
inline constexpr int kOk = 1, kCancel = 200;
}  // namespace editor_ids

// Columns per block.
inline constexpr int kEditorBlockColumns = 4;

// How a cell's text reads: as a plain number (blanks around it allowed), or not. A text that is
// not a plain number still counts as the number at its start, 0 when there is none.
struct CellReading {
  bool plainNumber = true;
  double countsAs = 0.0;
};
CellReading readCell(const std::string& text);

// The cells of a pasted block: lines split at line breaks, each line at runs of tabs and blanks.
// Empty lines at the end are dropped.
std::vector<std::vector<std::string>> splitPastedBlock(const std::string& text);

// What a matrix edit is given: the shape, title and acronyms, and the cells (copied on start).
struct MatrixEditRequest {
  std::string title;
  std::vector<std::string> rowAcronyms;  // one per row
  std::vector<std::string> colAcronyms;  // one per column
  TextMatrix cells;
};

class MatrixEditor : public QDialog {
  Q_OBJECT
 public:
  explicit MatrixEditor(const MatrixEditRequest& request, QWidget* parent = nullptr);

  int rows() const { return copy_.rows(); }
  int cols() const { return copy_.cols(); }
  int blockCount() const;
  // The edit field of cell (r, c), counted from 0.
  QLineEdit* cellField(int r, int c) const;
  // The edit's copy: what OK has read so far (the original cells until then).
  const TextMatrix& copy() const { return copy_; }
  // The field the Edit commands act on: the one that last had the input focus.
  QLineEdit* focusedField() const { return focused_; }
  // Runs an Edit command (1200 Cut, 1202 Copy, 1204 Paste) on the focused field.
  void editCommand(int id);
  // Pastes text at the focused field: one value goes into the field; a block fills the cells
  // from the focused one. Returns the number of cells filled.
  int pasteText(const std::string& text);
  // How many cells now hold text that is not a plain number.
  int markedCount() const;

  // OK: reads every field into the copy, then closes.
  void accept() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void markCell(QLineEdit* field);
  void updateStatus();

  TextMatrix copy_;
  std::vector<QLineEdit*> fields_;  // row-major
  QLineEdit* focused_ = nullptr;
  QLineEdit* status_ = nullptr;
  QScrollArea* scroll_ = nullptr;
};

// Runs the editor as the workbench does when no one drives it: the editor is shown, then the
// "Finished Editing" box (text " ", one OK) is shown without blocking the editor, and this
// returns when the box is dismissed.
void runMatrixEditorInteractively(MatrixEditor& editor);

// One matrix edit on `target`: builds the editor on a copy, lets `run` drive it (the interactive
// run above when `run` is empty), then writes the copy back into `target`. Always returns 0.
using MatrixEditorRunner = std::function<void(MatrixEditor&)>;
int editMatrix(TextMatrix& target, const std::string& title,
               const std::vector<std::string>& rowAcronyms,
               const std::vector<std::string>& colAcronyms, const MatrixEditorRunner& run,
               QWidget* parent = nullptr);

}  // namespace ovaro::ui
