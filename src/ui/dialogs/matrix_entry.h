// The matrix-entry dialogs: one button per matrix of a group (system equations, criterion,
// additive noise, uncertain parameters, measurement error, feedback rule, policy effect), shown
// only for the matrices the model's flags hold, and OK and Cancel.
//
// What a button does is the caller's: data entry opens the matrix editor on that matrix, and the
// import of single matrices hands the same dialog another action. The dialog itself changes
// nothing in the Model.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <QDialog>

#include "model/model.h"

class QButtonGroup;

namespace ovaro::ui {

// One matrix-entry dialog: its template name, its title and the matrices it may offer.
struct MatrixEntryGroup {
  std::string_view name;   // "DataInSEC4", ...
  std::string_view title;  // "System Equations", ...
  std::vector<MatrixId> matrices;
};

// Every matrix-entry dialog.
std::span<const MatrixEntryGroup> matrixEntryGroups();
// The group of that template name; nullptr when there is none.
const MatrixEntryGroup* matrixEntryGroup(std::string_view name);
// The system-equations template for the model's form, forward variables and maximum lead; empty
// when forward variables are on and the lead is not 1, 2 or 3.
std::string_view systemEquationsGroup(const Model& model);
// The criterion template: "DataInCRWN" when W is terminal different, else "DataInCRW".
std::string_view criterionGroup(const Model& model);

// The control id of a matrix's button (A 600, B 601, C 602, Z 606, X0 615, TH0 662, ...).
int matrixButtonId(MatrixId id);
// The caption of a matrix's button ("A", "TH0, Theta Means", ...).
std::string matrixButtonCaption(MatrixId id);

// The acronyms along one side of a matrix: the state, control, exogenous, observation or
// parameter acronyms, the period acronyms, or numbers where a side has no labels. A blank acronym
// shows as its number counted from 1, so that an unlabelled model still shows where each cell is.
std::vector<std::string> sideAcronyms(const Model& model, Extent extent, std::string_view matrix);

class MatrixEntryDialog : public QDialog {
  Q_OBJECT
 public:
  using Action = std::function<void(MatrixId)>;
  // The dialog of `group` for `model`; each button calls `onMatrix` with its matrix.
  MatrixEntryDialog(const MatrixEntryGroup& group, const Model& model, Action onMatrix,
                    QWidget* parent = nullptr);
  QButtonGroup* buttons() const { return buttons_; }

 private:
  QButtonGroup* buttons_;
  Action onMatrix_;
};

}  // namespace ovaro::ui
