#include "ui/dialogs/examples_browser.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace ovaro::ui {

namespace {

QString qs(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

}  // namespace

ExamplesBrowser::ExamplesBrowser(const ExampleTable& table, Loader load, QWidget* parent)
    : QDialog(parent), table_(table), load_(std::move(load)) {
  setObjectName("ExamplesWin");
  setWindowTitle("Examples");
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  for (const ExampleCascade& c : exampleCascades()) {
    auto* box = new QComboBox(this);
    box->addItem("(all)");
    // The entries in the order of their first example, as the menu's cascades list them.
    for (const ExampleEntry& e : table.rows())
      if (box->findText(qs(e.*c.field), Qt::MatchExactly) < 0) box->addItem(qs(e.*c.field));
    connect(box, &QComboBox::currentIndexChanged, this, [this] { applyFilters(); });
    form->addRow(qs(c.caption), box);
    filters_.push_back(box);
  }
  layout->addLayout(form);
  list_ = new QListWidget(this);
  list_->setMinimumSize(520, 320);
  layout->addWidget(list_, 1);
  details_ = new QLabel(this);
  details_->setWordWrap(true);
  layout->addWidget(details_);
  auto* buttons = new QDialogButtonBox(this);
  QPushButton* loadButton = buttons->addButton("Load", QDialogButtonBox::AcceptRole);
  QPushButton* closeButton = buttons->addButton(QDialogButtonBox::Close);
  // Enter belongs to the list (it loads the current example), not to a default button.
  for (QPushButton* b : {loadButton, closeButton}) {
    b->setAutoDefault(false);
    b->setDefault(false);
  }
  connect(loadButton, &QPushButton::clicked, this, [this] { loadCurrent(); });
  connect(closeButton, &QPushButton::clicked, this, &QDialog::close);
  layout->addWidget(buttons);
  connect(list_, &QListWidget::itemActivated, this, [this] { loadCurrent(); });
  connect(list_, &QListWidget::currentRowChanged, this, [this] { showDetails(); });
  if (table.rows().empty()) details_->setText(QString::fromStdString(table.problem()));
  applyFilters();
}

std::vector<int> ExamplesBrowser::shownIds() const {
  std::vector<int> ids;
  for (int i = 0; i < list_->count(); ++i)
    ids.push_back(list_->item(i)->data(Qt::UserRole).toInt());
  return ids;
}

void ExamplesBrowser::loadCurrent() {
  if (const QListWidgetItem* item = list_->currentItem()) load_(item->data(Qt::UserRole).toInt());
}

void ExamplesBrowser::applyFilters() {
  list_->clear();
  const auto cascades = exampleCascades();
  for (const ExampleEntry& e : table_.rows()) {
    bool shown = true;
    for (std::size_t k = 0; k < cascades.size() && shown; ++k)
      shown = filters_[k]->currentIndex() <= 0 ||
              filters_[k]->currentText() == qs(e.*cascades[k].field);
    if (!shown) continue;
    auto* item = new QListWidgetItem(qs(e.description), list_);
    item->setData(Qt::UserRole, e.commandId);
  }
  if (list_->count() > 0) list_->setCurrentRow(0);
  showDetails();
}

void ExamplesBrowser::showDetails() {
  const QListWidgetItem* item = list_->currentItem();
  const ExampleEntry* e = item != nullptr ? table_.row(item->data(Qt::UserRole).toInt()) : nullptr;
  if (e == nullptr) {
    if (!table_.rows().empty()) details_->setText("No example matches these choices.");
    return;
  }
  QString text = qs(e->fileName);
  for (const ExampleCascade& c : exampleCascades())
    text += "\n" + qs(c.caption) + ": " + qs(e->*c.field);
  details_->setText(text);
}

}  // namespace ovaro::ui
