#include "ui/editor/matrix_editor.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QEventLoop>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include "model/conversion.h"

namespace ovaro::ui {

namespace {

QString qs(const std::string& text) {
  return QString::fromStdString(text);
}

constexpr int kCellWidth = 90;
constexpr int kRowAcronymWidth = 100;

}  // namespace

CellReading readCell(const std::string& text) {
  CellReading reading;
  reading.countsAs = toDouble(text);
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string::npos) {
    reading.plainNumber = false;  // an empty cell counts as 0 too; say so
    return reading;
  }
  const auto last = text.find_last_not_of(" \t");
  const std::string core = text.substr(first, last - first + 1);
  // A plain number: the whole text is one decimal number. (Hexadecimal, infinities and NaN are
  // not what the workbench's conversion reads, so they are marked too.)
  std::size_t i = 0;
  auto digits = [&] {
    const std::size_t start = i;
    while (i < core.size() && core[i] >= '0' && core[i] <= '9') ++i;
    return i - start;
  };
  if (i < core.size() && (core[i] == '+' || core[i] == '-')) ++i;
  std::size_t mantissa = digits();
  if (i < core.size() && core[i] == '.') {
    ++i;
    mantissa += digits();
  }
  bool ok = mantissa > 0;
  if (ok && i < core.size() && (core[i] == 'e' || core[i] == 'E')) {
    ++i;
    if (i < core.size() && (core[i] == '+' || core[i] == '-')) ++i;
    ok = digits() > 0;
  }
  reading.plainNumber = ok && i == core.size();
  return reading;
}

std::vector<std::vector<std::string>> splitPastedBlock(const std::string& text) {
  std::vector<std::vector<std::string>> lines;
  std::string line;
  std::istringstream in(text);
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::vector<std::string> cells;
    std::istringstream words(line);
    std::string word;
    while (words >> word) cells.push_back(word);
    lines.push_back(std::move(cells));
  }
  while (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

MatrixEditor::MatrixEditor(const MatrixEditRequest& request, QWidget* parent)
    : QDialog(parent), copy_(request.cells) {
  setObjectName(QStringLiteral("MatrixEditor"));
  setWindowTitle(qs(request.title));
  setSizeGripEnabled(true);
  setWindowFlags(windowFlags() | Qt::WindowMaximizeButtonHint);
  move(60, 90);
  resize(600, 450);

  auto* layout = new QVBoxLayout(this);
  auto* menuBar = new QMenuBar(this);
  QMenu* edit = menuBar->addMenu(QStringLiteral("Edit"));
  for (auto [id, label] : {std::pair{editor_ids::kCut, "Cut"}, std::pair{editor_ids::kCopy, "Copy"},
                           std::pair{editor_ids::kPaste, "Paste"}}) {
    QAction* action = edit->addAction(QLatin1String(label));
    action->setData(id);
    const int commandId = id;
    connect(action, &QAction::triggered, this, [this, commandId] { editCommand(commandId); });
  }
  layout->setMenuBar(menuBar);

  // Line 0: OK, Cancel and a status field; this strip does not scroll.
  auto* strip = new QHBoxLayout;
  auto* ok = new QPushButton(QStringLiteral("OK"), this);
  ok->setObjectName(QStringLiteral("button1"));
  ok->setFixedWidth(60);
  ok->setAutoDefault(false);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
  cancel->setObjectName(QStringLiteral("button200"));
  cancel->setFixedWidth(60);
  cancel->setAutoDefault(false);
  status_ = new QLineEdit(this);
  status_->setObjectName(QStringLiteral("status"));
  status_->setReadOnly(true);
  status_->setFrame(false);
  status_->setFocusPolicy(Qt::NoFocus);
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  strip->addWidget(ok);
  strip->addWidget(cancel);
  strip->addWidget(status_, 1);
  layout->addLayout(strip);

  // The blocks: at most four columns each, one blank line between blocks.
  auto* body = new QWidget;
  auto* grid = new QGridLayout(body);
  grid->setHorizontalSpacing(10);
  grid->setVerticalSpacing(2);
  grid->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  const int rowCount = copy_.rows(), colCount = copy_.cols();
  fields_.assign(static_cast<std::size_t>(rowCount) * static_cast<std::size_t>(colCount), nullptr);
  int line = 0;
  for (int g = 0; g < blockCount(); ++g) {
    const int firstCol = g * kEditorBlockColumns;
    const int endCol = std::min(firstCol + kEditorBlockColumns, colCount);
    for (int c = firstCol; c < endCol; ++c) {
      const std::string acronym =
          c < static_cast<int>(request.colAcronyms.size()) ? request.colAcronyms[c] : "";
      auto* heading = new QLabel(qs(acronym), body);
      heading->setFixedWidth(kCellWidth);
      heading->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
      grid->addWidget(heading, line, 1 + c - firstCol);
    }
    ++line;
    for (int r = 0; r < rowCount; ++r, ++line) {
      const std::string acronym =
          r < static_cast<int>(request.rowAcronyms.size()) ? request.rowAcronyms[r] : "";
      auto* rowLabel = new QLabel(qs(acronym), body);
      rowLabel->setFixedWidth(kRowAcronymWidth);
      grid->addWidget(rowLabel, line, 0);
      for (int c = firstCol; c < endCol; ++c) {
        auto* field = new QLineEdit(qs(std::string(copy_.cell(r, c))), body);
        field->setObjectName(QStringLiteral("cell_%1_%2").arg(r).arg(c));
        field->setMaxLength(kCellChars);
        field->setFixedWidth(kCellWidth);
        field->setAlignment(Qt::AlignRight);
        field->installEventFilter(this);
        connect(field, &QLineEdit::textChanged, this, [this, field] {
          markCell(field);
          updateStatus();
        });
        markCell(field);
        grid->addWidget(field, line, 1 + c - firstCol);
        fields_[static_cast<std::size_t>(r) * colCount + c] = field;
      }
    }
    if (g + 1 < blockCount()) grid->setRowMinimumHeight(line++, 12);
  }
  scroll_ = new QScrollArea(this);
  scroll_->setWidget(body);
  scroll_->setWidgetResizable(true);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  layout->addWidget(scroll_, 1);
  updateStatus();
  if (!fields_.empty()) {
    focused_ = fields_.front();
    fields_.front()->setFocus();
  }
}

int MatrixEditor::blockCount() const {
  return copy_.cols() / kEditorBlockColumns + (copy_.cols() % kEditorBlockColumns != 0 ? 1 : 0);
}

QLineEdit* MatrixEditor::cellField(int r, int c) const {
  if (r < 0 || c < 0 || r >= copy_.rows() || c >= copy_.cols()) return nullptr;
  return fields_[static_cast<std::size_t>(r) * copy_.cols() + c];
}

void MatrixEditor::markCell(QLineEdit* field) {
  const CellReading reading = readCell(field->text().toStdString());
  if (reading.plainNumber) {
    field->setStyleSheet({});
    field->setToolTip({});
    field->setProperty("marked", false);
    return;
  }
  field->setStyleSheet(QStringLiteral("QLineEdit { background: #ffe0a0; color: #802000; }"));
  field->setToolTip(QStringLiteral("Not a number: this cell will count as %1")
                        .arg(QString::number(reading.countsAs, 'g', 15)));
  field->setProperty("marked", true);
}

int MatrixEditor::markedCount() const {
  return static_cast<int>(std::count_if(fields_.begin(), fields_.end(), [](const QLineEdit* f) {
    return f->property("marked").toBool();
  }));
}

void MatrixEditor::updateStatus() {
  const int marked = markedCount();
  status_->setText(marked == 0   ? QString()
                   : marked == 1 ? QStringLiteral("1 cell does not read as a number")
                                 : QStringLiteral("%1 cells do not read as numbers").arg(marked));
}

bool MatrixEditor::eventFilter(QObject* watched, QEvent* event) {
  auto* field = qobject_cast<QLineEdit*>(watched);
  if (field != nullptr && event->type() == QEvent::FocusIn) {
    focused_ = field;
    scroll_->ensureWidgetVisible(field);
  }
  if (field != nullptr && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->matches(QKeySequence::Paste)) {
    focused_ = field;
    editCommand(editor_ids::kPaste);
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

void MatrixEditor::editCommand(int id) {
  if (focused_ == nullptr) return;
  if (id == editor_ids::kCut) focused_->cut();
  if (id == editor_ids::kCopy) focused_->copy();
  if (id == editor_ids::kPaste) {
    const QClipboard* clipboard = QApplication::clipboard();
    if (clipboard != nullptr) pasteText(clipboard->text().toStdString());
  }
}

int MatrixEditor::pasteText(const std::string& text) {
  if (focused_ == nullptr) return 0;
  const auto block = splitPastedBlock(text);
  const bool single = block.size() <= 1 && (block.empty() || block.front().size() <= 1);
  if (single) {
    // One value (or none): an ordinary paste into the field, within its 15 characters.
    focused_->insert(
        qs(block.empty() || block.front().empty() ? std::string() : block.front().front()));
    return 1;
  }
  int r0 = 0, c0 = 0;
  for (int r = 0; r < copy_.rows(); ++r) {
    for (int c = 0; c < copy_.cols(); ++c) {
      if (cellField(r, c) == focused_) r0 = r, c0 = c;
    }
  }
  int filled = 0;
  for (std::size_t i = 0; i < block.size(); ++i) {
    for (std::size_t j = 0; j < block[i].size(); ++j) {
      QLineEdit* field = cellField(r0 + static_cast<int>(i), c0 + static_cast<int>(j));
      if (field == nullptr) continue;
      field->setText(qs(block[i][j]));  // longer texts are cut to the field's 15 characters
      ++filled;
    }
  }
  return filled;
}

void MatrixEditor::accept() {
  for (int r = 0; r < copy_.rows(); ++r) {
    for (int c = 0; c < copy_.cols(); ++c) {
      copy_.setCell(r, c, cellField(r, c)->text().toStdString());
    }
  }
  QDialog::accept();
}

void runMatrixEditorInteractively(MatrixEditor& editor) {
  editor.setModal(false);
  editor.show();
  // The box has no owner and does not block the editor: the user types, presses the editor's
  // OK, then dismisses the box.
  // The box belongs to the editor only so that a data-entry dialog that is modal below them
  // blocks neither.
  QMessageBox box(QMessageBox::NoIcon, QStringLiteral("Finished Editing"), QStringLiteral(" "),
                  QMessageBox::Ok, &editor);
  box.setWindowModality(Qt::NonModal);
  QEventLoop loop;
  QObject::connect(&box, &QMessageBox::finished, &loop, &QEventLoop::quit);
  box.show();
  loop.exec();
  editor.close();
}

int editMatrix(TextMatrix& target, const std::string& title,
               const std::vector<std::string>& rowAcronyms,
               const std::vector<std::string>& colAcronyms, const MatrixEditorRunner& run,
               QWidget* parent) {
  QApplication::setOverrideCursor(Qt::WaitCursor);
  // Opened from a modal matrix-entry dialog, the editor must belong to that dialog, or the
  // dialog's modality would block it.
  QWidget* modal = QApplication::activeModalWidget();
  MatrixEditor editor({title, rowAcronyms, colAcronyms, target}, modal != nullptr ? modal : parent);
  QApplication::restoreOverrideCursor();
  if (run) {
    run(editor);
  } else {
    runMatrixEditorInteractively(editor);
  }
  target = editor.copy();
  return 0;
}

}  // namespace ovaro::ui
