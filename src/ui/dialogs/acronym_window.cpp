#include "ui/dialogs/acronym_window.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

#include "ui/dialogs/form_dialogs.h"

namespace ovaro::ui {

namespace {

struct ClassInfo {
  LabelKind kind;
  const char* caption;
  Extent extent;
};

const std::vector<ClassInfo>& classes() {
  static const std::vector<ClassInfo> table{
      {LabelKind::States, "States", Extent::N},
      {LabelKind::Controls, "Controls", Extent::M},
      {LabelKind::Exogenous, "Exogenous", Extent::L},
      {LabelKind::Observations, "Observations", Extent::NY},
      {LabelKind::Parameters, "Uncertain Parameters", Extent::NP},
      {LabelKind::Periods, "Time Periods", Extent::NT},
  };
  return table;
}

QString trimmedRight(const std::string& text) {
  const auto last = text.find_last_not_of(' ');
  return QString::fromStdString(last == std::string::npos ? std::string()
                                                          : text.substr(0, last + 1));
}

QLineEdit* labelField(QWidget* parent, const std::string& text, int maxChars, int width) {
  auto* edit = new QLineEdit(trimmedRight(text), parent);
  edit->setMaxLength(maxChars);
  edit->setFixedWidth(width);
  refuseFieldSeparator(edit);
  return edit;
}

}  // namespace

AcronymWindow::AcronymWindow(Model& model, QWidget* parent)
    : QDialog(parent), model_(model), pages_(new QTabWidget(this)) {
  setObjectName(QStringLiteral("Acronyms"));
  setWindowTitle(QStringLiteral("Acronyms"));
  resize(640, 420);
  auto* layout = new QVBoxLayout(this);
  for (const ClassInfo& info : classes()) {
    const LabelTable& table = model.labels(info.kind);
    // The table's own length, which Allocate made from the counts; a count changed since then
    // is not a label the model holds.
    const int count = static_cast<int>(table.acronyms.size());
    const bool withNames = info.kind != LabelKind::Periods;
    Page page{info.kind, {}, {}};
    auto* body = new QWidget;
    auto* grid = new QGridLayout(body);
    grid->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    grid->addWidget(new QLabel(QStringLiteral("Acronym"), body), 0, 1);
    if (withNames) grid->addWidget(new QLabel(QStringLiteral("Name"), body), 0, 2);
    for (int i = 0; i < count; ++i) {
      grid->addWidget(new QLabel(QString::number(i + 1), body), i + 1, 0);
      auto* acronym = labelField(body, table.acronyms[i], kAcronymChars, 90);
      acronym->setObjectName(QStringLiteral("acronym_%1").arg(i));
      grid->addWidget(acronym, i + 1, 1);
      page.acronyms.push_back(acronym);
      if (withNames) {
        const std::string name =
            i < static_cast<int>(table.names.size()) ? table.names[i] : std::string();
        auto* field = labelField(body, name, kNameChars, 360);
        field->setObjectName(QStringLiteral("name_%1").arg(i));
        grid->addWidget(field, i + 1, 2);
        page.names.push_back(field);
      }
    }
    if (count == 0) grid->addWidget(new QLabel(QStringLiteral("None in this model."), body), 1, 1);
    auto* scroll = new QScrollArea;
    scroll->setWidget(body);
    scroll->setWidgetResizable(true);
    pages_->addTab(scroll, QLatin1String(info.caption));
    tables_.push_back(std::move(page));
  }
  layout->addWidget(pages_);
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(box);
}

const AcronymWindow::Page* AcronymWindow::page(LabelKind kind) const {
  for (const Page& p : tables_) {
    if (p.kind == kind) return &p;
  }
  return nullptr;
}

QLineEdit* AcronymWindow::acronymField(LabelKind kind, int i) const {
  const Page* p = page(kind);
  return p != nullptr && i >= 0 && i < static_cast<int>(p->acronyms.size()) ? p->acronyms[i]
                                                                            : nullptr;
}

QLineEdit* AcronymWindow::nameField(LabelKind kind, int i) const {
  const Page* p = page(kind);
  return p != nullptr && i >= 0 && i < static_cast<int>(p->names.size()) ? p->names[i] : nullptr;
}

void AcronymWindow::accept() {
  for (const Page& p : tables_) {
    LabelTable& table = model_.labels(p.kind);
    for (std::size_t i = 0; i < p.acronyms.size(); ++i) {
      // An emptied acronym is the blank acronym a new table starts with.
      std::string a = p.acronyms[i]->text().toStdString();
      table.acronyms[i] = a.empty() ? " " : a;
    }
    for (std::size_t i = 0; i < p.names.size() && i < table.names.size(); ++i) {
      std::string name = p.names[i]->text().toStdString();
      name.resize(static_cast<std::size_t>(kNameChars), ' ');  // names are blank-filled slots
      table.names[i] = name;
    }
  }
  QDialog::accept();
}

}  // namespace ovaro::ui
