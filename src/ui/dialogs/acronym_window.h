// The acronym window: the acronyms (at most 8 characters) and names (at most 48) of the states,
// controls, exogenous variables, observations and uncertain parameters, and the acronyms of the
// time periods, one page per class. Nothing containing '~' can be typed (it separates the fields
// of the model file). OK writes every page back into the Model; Cancel writes nothing.
#pragma once

#include <vector>

#include <QDialog>

#include "model/model.h"

class QLineEdit;
class QTabWidget;

namespace ovaro::ui {

class AcronymWindow : public QDialog {
  Q_OBJECT
 public:
  explicit AcronymWindow(Model& model, QWidget* parent = nullptr);
  QTabWidget* pages() const { return pages_; }
  // The acronym and name fields of entry i of a class (name is nullptr for periods).
  QLineEdit* acronymField(LabelKind kind, int i) const;
  QLineEdit* nameField(LabelKind kind, int i) const;
  void accept() override;

 private:
  struct Page {
    LabelKind kind;
    std::vector<QLineEdit*> acronyms;
    std::vector<QLineEdit*> names;
  };
  const Page* page(LabelKind kind) const;

  Model& model_;
  QTabWidget* pages_;
  std::vector<Page> tables_;
};

}  // namespace ovaro::ui
