// File: Examples and the example browser (command 13) on the library's table.
#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTest>
#include <set>
#include <string>
#include <vector>

#include "model/example_table.h"
#include "ui/dialogs/examples_browser.h"
#include "ui/main_window.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

// The command ids of every item below `menu`, however deep.
void collectIds(const QMenu* menu, std::multiset<int>& ids) {
  for (const QAction* a : menu->actions()) {
    if (a->menu() != nullptr)
      collectIds(a->menu(), ids);
    else if (!a->isSeparator())
      ids.insert(a->data().toInt());
  }
}

TEST(ExamplesMenu, EachOfTheFiveCascadesHoldsEveryExampleOnce) {
  test::qtApp();
  RecordingPrompter prompter;
  MainWindow window(prompter);
  std::set<int> table;
  for (const ExampleEntry& e : exampleTable()) table.insert(e.commandId);
  ASSERT_EQ(table.size(), 50u);
  const QMenu* examples = nullptr;
  for (const QAction* top : window.menuBar()->actions())
    for (const QAction* a : top->menu()->actions())
      if (a->text() == "Examples") examples = a->menu();
  ASSERT_NE(examples, nullptr);
  ASSERT_EQ(examples->actions().size(), 5);
  for (std::size_t k = 0; k < 5; ++k) {
    const QAction* cascade = examples->actions()[static_cast<qsizetype>(k)];
    EXPECT_EQ(cascade->text().toStdString(), exampleCascades()[k].caption);
    std::multiset<int> ids;
    collectIds(cascade->menu(), ids);
    EXPECT_EQ(std::set<int>(ids.begin(), ids.end()), table);
    EXPECT_EQ(ids.size(), table.size());
  }
}

TEST(ExamplesBrowser, FiltersByACascadeAndLoadsOnEnter) {
  test::qtApp();
  RecordingPrompter prompter;
  MainWindow window(prompter);
  std::vector<int> shown;
  std::string chosen;
  QPointer<ExamplesBrowser> browser;
  window.setDialogRunner([&](QDialog& d) {
    if (d.objectName() != "ExamplesWin") return 0;  // the loaded model's description
    browser = static_cast<ExamplesBrowser*>(&d);
    EXPECT_EQ(browser->shownIds().size(), exampleTable().size());
    QComboBox* terms = browser->filter(3);  // By Stochastic Terms
    terms->setCurrentIndex(terms->findText("Measurement error"));
    shown = browser->shownIds();
    browser->show();
    browser->list()->setCurrentRow(1);
    chosen = exampleLibrary().row(shown.at(1))->description;
    QTest::keyClick(browser->list(), Qt::Key_Return);
    EXPECT_FALSE(browser->isVisible());  // loading closes the browser
    return 0;
  });
  window.dispatch(13);
  std::size_t expected = 0;
  for (const ExampleEntry& e : exampleTable()) expected += e.stochasticTerms == "Measurement error";
  ASSERT_GE(expected, 2u);
  EXPECT_EQ(shown.size(), expected);
  for (int id : shown) EXPECT_EQ(exampleLibrary().row(id)->stochasticTerms, "Measurement error");
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].text, chosen);
  EXPECT_EQ(prompter.messages()[0].caption, "Model Loaded");
  EXPECT_EQ(window.workbench().model.flags.stochTerms, 1728);
  EXPECT_FALSE(browser);  // the browser lived only while it ran
}

}  // namespace
}  // namespace ovaro::ui
