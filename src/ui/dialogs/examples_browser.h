// The example browser ("ExamplesWin"): the library's examples with their descriptions, narrowed
// by any of the five cascades of File: Examples. A double click or Enter on an example, or Load,
// hands its command id to the loader; the loader closes the browser.
#pragma once

#include <QDialog>
#include <functional>
#include <vector>

#include "model/example_table.h"

class QComboBox;
class QLabel;
class QListWidget;

namespace ovaro::ui {

class ExamplesBrowser : public QDialog {
 public:
  using Loader = std::function<void(int commandId)>;
  // `table` must outlive the browser.
  ExamplesBrowser(const ExampleTable& table, Loader load, QWidget* parent = nullptr);

  QListWidget* list() const { return list_; }
  // The filter of cascade k (in menu order); item 0 is "(all)".
  QComboBox* filter(std::size_t k) const { return filters_[k]; }
  QLabel* details() const { return details_; }
  // The command ids of the examples the filters let through, in table order.
  std::vector<int> shownIds() const;
  // Loads the current example, if any.
  void loadCurrent();

 private:
  void applyFilters();
  void showDetails();

  const ExampleTable& table_;
  Loader load_;
  std::vector<QComboBox*> filters_;
  QListWidget* list_;
  QLabel* details_;
};

}  // namespace ovaro::ui
