// The plot windows and plot commands of the workbench, painted off screen, and the pictures of
// the batch tool read back by Qt's own PNG and SVG readers.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QDialog>
#include <QImageReader>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QProcess>
#include <QSvgRenderer>
#include <QTableWidget>
#include <filesystem>
#include <functional>

#include "model/model_file.h"
#include "results/plot_layout.h"
#include "support/temp_dir.h"
#include "support/test_data.h"
#include "ui/main_window.h"
#include "ui/menu_table.h"
#include "ui/plots/criterion_summary_window.h"
#include "ui/plots/plot_dialogs.h"
#include "ui/plots/plot_window.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

std::string example(const char* name) {
  return std::string(OVARO_SOURCE_DIR) + "/examples/" + name;
}

// Records every message and, at "Continue Plotting", a picture of the plot window on screen.
class GrabbingPrompter final : public RecordingPrompter {
 public:
  Answer show(const Message& m) override {
    if (m.caption == "Continue Plotting") {
      for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* plot = dynamic_cast<PlotWindow*>(w); plot != nullptr && plot->isVisible())
          grabs.push_back({plot->objectName(), plot->canvas()->grab().toImage()});
    }
    return RecordingPrompter::show(m);
  }
  std::vector<std::pair<QString, QImage>> grabs;
};

struct Harness {
  Harness() {
    test::qtApp();
    window = std::make_unique<MainWindow>(prompter, example("track1.ovi"));
    window->setDialogRunner([this](QDialog& d) {
      const int result = fills.empty() ? QDialog::Rejected : fills.front()(d);
      if (!fills.empty()) fills.erase(fills.begin());
      return result;
    });
  }
  GrabbingPrompter prompter;
  std::unique_ptr<MainWindow> window;
  std::vector<std::function<int(QDialog&)>> fills;  // one per dialog; then Cancel/Done
};

// Whether a pixel of this colour lies within `r` pixels of p.
bool colourNear(const QImage& image, QPointF p, QColor colour, int r = 2) {
  for (int dx = -r; dx <= r; ++dx)
    for (int dy = -r; dy <= r; ++dy) {
      const QPoint q(static_cast<int>(p.x()) + dx, static_cast<int>(p.y()) + dy);
      if (image.rect().contains(q) && (image.pixel(q) & 0xffffff) == (colour.rgb() & 0xffffff))
        return true;
    }
  return false;
}

QPointF midpoint(const std::vector<PlotPoint>& line, std::size_t k, const QRectF& rect) {
  return (plotToDevice(line[k], rect) + plotToDevice(line[k + 1], rect)) / 2;
}

TEST(PlotWindows, SingleRunLoopPaintsTheSeriesInTheirPens) {
  Harness h;
  h.window->dispatch(cmd::kSolveQlp);
  // First a plot without a variable, then state 1 with its desired path, then Done.
  h.fills.push_back(test::accepted);
  h.fills.push_back([](QDialog& d) {
    auto& dialog = dynamic_cast<PlotsDialog&>(d);
    dialog.variables()->setCurrentRow(0);
    dialog.pathTypes()->button(kPathOptAndDes)->click();
    return test::accepted(d);
  });
  h.window->dispatch(cmd::kPlotSingle);
  EXPECT_EQ(testing::shown(h.prompter),
            (std::vector<std::string>{"Warning!: No series selected.", "Continue Plotting: Plot"}));
  ASSERT_EQ(h.prompter.grabs.size(), 1u);
  EXPECT_EQ(h.prompter.grabs[0].first, "PlotWin");
  const QImage& image = h.prompter.grabs[0].second;
  const Workbench& wb = h.window->workbench();
  const SeriesGathering g = gatherSeries(wb.results, wb.plotChoices);
  const PlotLayout layout = layoutPlot(g.series, {});
  const QRectF rect(image.rect());
  // Opt in solid red; Des, the flat target, in dashes of blue with white between.
  EXPECT_TRUE(colourNear(image, midpoint(layout.polylines[0], 2, rect), QColor(255, 0, 0)));
  const QPointF des = midpoint(layout.polylines[1], 4, rect);
  bool blue = false, white = false;
  for (int dx = 0; dx < 12; ++dx) {
    blue |= colourNear(image, des + QPointF(dx, 0), QColor(0, 0, 255), 1);
    white |= !colourNear(image, des + QPointF(dx, 0), QColor(0, 0, 255), 1);
  }
  EXPECT_TRUE(blue && white);
  EXPECT_TRUE(colourNear(image, plotToDevice({0, 4000}, rect), Qt::black, 1));  // the y axis
}

TEST(PlotWindows, ScenariosAreNamedStoredAndPlottedAgainstTheDesiredPath) {
  Harness h;
  h.window->dispatch(cmd::kPrefScenarioQuestion);
  auto name = [](const char* acronym) {
    return [acronym](QDialog& d) {
      EXPECT_EQ(d.windowTitle(), "Scenario Acryonm and Description");
      auto& dialog = dynamic_cast<ScenarioNameDialog&>(d);
      EXPECT_EQ(dialog.acronymField()->text(), "QLP");  // proposed from the method
      dialog.acronymField()->setText(acronym);
      return test::accepted(d);
    };
  };
  h.fills.push_back(name("BASE"));
  h.window->dispatch(cmd::kSolveQlp);
  h.fills.push_back(name("AGAIN"));
  h.window->dispatch(cmd::kSolveQlp);
  const Workbench& wb = h.window->workbench();
  EXPECT_EQ(wb.scenarios.acronyms, (std::vector<std::string>{"BASE", "AGAIN"}));

  h.fills.push_back([](QDialog& d) {
    auto& dialog = dynamic_cast<ScenarioPlotsDialog&>(d);
    dialog.variables()->setCurrentRow(0);
    dialog.scenario(0)->setCurrentIndex(2);
    dialog.pathTypes()->button(kScenarioOptAndDesired)->click();
    return test::accepted(d);
  });
  h.window->dispatch(cmd::kPlotScenarios);
  EXPECT_EQ(h.prompter.messages().back().text, "Plot Scenarios");
  ASSERT_EQ(h.prompter.grabs.size(), 1u);
  EXPECT_EQ(h.prompter.grabs[0].first, "PlotWinSce");
  const QImage& image = h.prompter.grabs[0].second;
  const std::vector<PlotSeries> series = gatherScenarioSeries(wb.scenarios, wb.scenarioPlotChoices);
  ASSERT_EQ(series.size(), 2u);
  EXPECT_EQ(series[0].legend, "AGAIN");
  const PlotLayout layout = layoutPlot(series, {});
  const QRectF rect(image.rect());
  EXPECT_TRUE(colourNear(image, midpoint(layout.polylines[0], 1, rect), QColor(255, 0, 0)));
  // The desired path's heavy dash-dot-dot pen: black somewhere in one pattern length (48 px).
  const QPointF des = midpoint(layout.polylines[1], 3, rect);
  bool black = false;
  for (int dx = 0; dx < 48; ++dx) black |= colourNear(image, des + QPointF(dx, 0), Qt::black, 0);
  EXPECT_TRUE(black);
}

// The window saves PNG and SVG pictures that Qt's own readers accept, and refuses other kinds;
// the batch tool draws them without a display: no DISPLAY and no platform in its environment.
TEST(PlotWindows, PicturesAreSavedAsPngAndSvgWithOrWithoutADisplay) {
  test::qtApp();
  RecordingPrompter prompter;
  const std::vector<PlotSeries> series{{"Opt", {1, 3, 2}, 0}};
  const PlotLayout layout = layoutPlot(series, {"X", "Title", {"a", "b", "c"}});
  PlotWindow window(
      "PlotWin", "Plot", [layout](QPainter& p, const QRect& r) { paintPlot(p, r, layout); },
      prompter);
  testing::TempDir dir;
  const QString png = QString::fromStdString(dir.file("p.png"));
  const QString svg = QString::fromStdString(dir.file("p.svg"));
  ASSERT_TRUE(window.savePicture(png.toStdString()));
  ASSERT_TRUE(window.savePicture(svg.toStdString()));
  QImageReader reader(png);
  EXPECT_EQ(reader.format(), "png");
  EXPECT_EQ(reader.read().size(), QSize(kPictureWidth, kPictureHeight));
  EXPECT_TRUE(QSvgRenderer(svg).isValid());
  EXPECT_FALSE(window.savePicture(dir.file("p.bmp")));
  EXPECT_EQ(prompter.messages().size(), 1u);
  EXPECT_FALSE(std::filesystem::exists(dir.file("p.bmp")));

  const QString cpng = QString::fromStdString(dir.file("c.png"));
  const QString csvg = QString::fromStdString(dir.file("c.svg"));
  QProcess cli;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) env.remove(name);
  cli.setProcessEnvironment(env);
  cli.start(OVARO_BINARY_DIR "/src/app/ovaro-cli",
            {"plot", QString::fromStdString(example("learn1.ovi")), "--method", "ce,olf", "--kind",
             "controls", "--variable", "1", "--path", "opt", "--runs", "3", "--png", cpng, "--svg",
             csvg});
  ASSERT_TRUE(cli.waitForFinished(60000));
  EXPECT_EQ(cli.exitCode(), 0) << cli.readAllStandardError().toStdString();
  EXPECT_FALSE(QImageReader(cpng).read().isNull());
  EXPECT_TRUE(QSvgRenderer(csvg).isValid());
}

TEST(PlotWindows, ComparisonShowsItsCriterionSummaryAndItsSpread) {
  Harness h;
  Workbench& wb = h.window->workbench();
  ASSERT_EQ(readModelFile(example("learn1.ovi"), wb.model, wb.prompter), 1);
  wb.results.ran.compare = {true, true, false, false, false};
  h.window->dispatch(cmd::kCompare);
  auto* summary = h.window->findChild<CriterionSummaryWindow*>();
  ASSERT_NE(summary, nullptr);
  ASSERT_EQ(summary->pairsTable()->rowCount(), 1);
  EXPECT_EQ(summary->pairsTable()->item(0, 0)->text(), "HCFR - CE");
  double sum = 0;
  for (const auto& run : wb.results.comparison->criteria) sum += run[0] - run[1];
  EXPECT_EQ(summary->pairsTable()->item(0, 1)->text(),
            summaryNumber(sum / static_cast<double>(wb.results.comparison->runs)));

  h.fills.push_back(test::accepted);
  h.window->dispatch(cmd::kPlotSpread);
  auto* spread = h.window->findChild<PlotWindow*>("PlotWinSpread");
  ASSERT_NE(spread, nullptr);
  const QImage image = spread->canvas()->grab().toImage();
  int ceBlue = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) ceBlue += (image.pixel(x, y) & 0xffffff) == 0x0000ff;
  EXPECT_GT(ceBlue, 50);  // CE's median line
}

}  // namespace
}  // namespace ovaro::ui
