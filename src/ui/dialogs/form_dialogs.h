// The dialogs that name, size and specify the model: "Name", "Size", "Stochastic_Terms",
// "Functional_Forms" (Form Specifications), "Source_Random", "OptionsMC" and "DeleteElem".
//
// They only collect input. Radio buttons and check boxes carry their option ids as button ids
// and write the option into the Model the moment they are clicked; Cancel does not undo a click.
// Typed fields are read on OK only, and Name, Size and DeleteElem write nothing on Cancel. What
// a changed size or form does to the data already entered is decided after OK by the caller,
// from the values the dialog found when it opened.
#pragma once

#include <string>
#include <vector>

#include <QDialog>

#include "model/model.h"

class QButtonGroup;
class QLineEdit;
class QListWidget;

namespace ovaro::ui {

// Text fields refuse '~', which separates the fields of the model file.
void refuseFieldSeparator(QLineEdit* edit);

// "Name": the model's acronym (300, at most 8 characters) and name (301, at most 47).
class NameDialog : public QDialog {
  Q_OBJECT
 public:
  explicit NameDialog(Model& model, QWidget* parent = nullptr);
  QLineEdit* field(int id) const;
  void accept() override;

 private:
  Model& model_;
  QLineEdit* acronym_;
  QLineEdit* name_;
};

// "Size": every count as text of at most 8 characters (object name "edit" + control id). OK
// stores each text with its plain decimal conversion (no check: what is not a number is 0) and
// recomputes nt and nt - 1 from the two period numbers.
class SizeDialog : public QDialog {
  Q_OBJECT
 public:
  explicit SizeDialog(Dimensions& dims, QWidget* parent = nullptr);
  // The field of a control id (302..313); nullptr for another id.
  QLineEdit* field(int id) const;
  void accept() override;

 private:
  Dimensions& dims_;
  std::vector<std::pair<int, QLineEdit*>> fields_;
};

// "Stochastic_Terms": 1720, 1722, 1724, 1728 into `stochTerms`.
class StochasticTermsDialog : public QDialog {
  Q_OBJECT
 public:
  explicit StochasticTermsDialog(SpecFlags& flags, QWidget* parent = nullptr);
  QButtonGroup* buttons() const { return buttons_; }

 private:
  QButtonGroup* buttons_;
};

// "Functional_Forms", titled "Form Specifications": one group per form flag, the options the
// VELD and VELDPC codes require marked "*", and the legend saying so.
class FormsDialog : public QDialog {
  Q_OBJECT
 public:
  explicit FormsDialog(SpecFlags& flags, QWidget* parent = nullptr);
  // The group holding option `id` (400..421); nullptr for another id.
  QButtonGroup* groupOf(int id) const;

 private:
  std::vector<QButtonGroup*> groups_;
};

// "Source_Random": Read In (454) or Generate internally (455), and the six switches of which
// initial values are random and which noise terms are drawn (button ids 456..461, in the order
// of RandomSwitches).
class SourceRandomDialog : public QDialog {
  Q_OBJECT
 public:
  SourceRandomDialog(SpecFlags& flags, RandomSwitches& switches, QWidget* parent = nullptr);
  QButtonGroup* sourceButtons() const { return source_; }
  QButtonGroup* switchButtons() const { return switches_; }

 private:
  QButtonGroup* source_;
  QButtonGroup* switches_;
};

// "OptionsMC": the starting periods (counted from 0) of the variance over time for states (list
// 2400) and controls (list 2402), each list holding the acronyms of all nt periods. OK stores the
// chosen rows.
class OptionsMcDialog : public QDialog {
  Q_OBJECT
 public:
  OptionsMcDialog(const std::vector<std::string>& periodAcronyms, int& stateStart,
                  int& controlStart, QWidget* parent = nullptr);
  QListWidget* list(int id) const;
  void accept() override;

 private:
  int& stateStart_;
  int& controlStart_;
  QListWidget* states_;
  QListWidget* controls_;
};

// "DeleteElem": the number of the element to delete (1072, at most 8 characters). OK stores it
// and sets `confirmed` to 1; Cancel sets `confirmed` to 0.
class DeleteElemDialog : public QDialog {
  Q_OBJECT
 public:
  DeleteElemDialog(int& index, int& confirmed, QWidget* parent = nullptr);
  QLineEdit* field() const { return edit_; }
  void accept() override;
  void reject() override;

 private:
  int& index_;
  int& confirmed_;
  QLineEdit* edit_;
};

}  // namespace ovaro::ui
