// The plot windows and plot commands of the workbench, painted off screen, and the pictures of
// the batch tool read back by Qt's own PNG and SVG readers.
#include <QComboBox>
#include <QImageReader>
#include <QListWidget>
#include <QPainter>
#include <QProcess>
#include <QSvgRenderer>
#include <filesystem>

#include "results/plot_layout.h"
#include "ui/harness.h"
#include "ui/plots/plot_dialogs.h"
#include "ui/plots/plot_window.h"

namespace ovaro::ui {
namespace {

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

// How many of the `span` points from the middle of segment k of `line` rightwards have a pixel of
// this colour within `r` pixels.
int hits(const QImage& image, const std::vector<PlotPoint>& line, std::size_t k, QColor colour,
         int span, int r) {
  const QRectF rect(image.rect());
  const QPointF mid = (plotToDevice(line[k], rect) + plotToDevice(line[k + 1], rect)) / 2;
  int n = 0;
  for (int dx = 0; dx < span; ++dx) n += colourNear(image, mid + QPointF(dx, 0), colour, r);
  return n;
}

TEST(PlotWindows, SingleRunLoopPaintsTheSeriesInTheirPens) {
  test::Harness h(test::example("track1.ovi"));
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
  // Opt in solid red; Des, the flat target, in dashes of blue with white between.
  EXPECT_EQ(hits(image, layout.polylines[0], 2, QColor(255, 0, 0), 1, 2), 1);
  const int blue = hits(image, layout.polylines[1], 4, QColor(0, 0, 255), 12, 1);
  EXPECT_TRUE(blue > 0 && blue < 12) << blue;
  EXPECT_TRUE(colourNear(image, plotToDevice({0, 4000}, QRectF(image.rect())), Qt::black, 1));
}

TEST(PlotWindows, ScenariosAreNamedStoredAndPlottedAgainstTheDesiredPath) {
  test::Harness h(test::example("track1.ovi"));
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
  EXPECT_EQ(hits(image, layout.polylines[0], 1, QColor(255, 0, 0), 1, 2), 1);
  // The desired path's heavy dash-dot-dot pen: black somewhere in one pattern length (48 px).
  EXPECT_GT(hits(image, layout.polylines[1], 3, Qt::black, 48, 0), 0);
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
  auto in = [&](const char* name) { return QString::fromStdString(dir.file(name)); };
  ASSERT_TRUE(window.savePicture(dir.file("p.png")) && window.savePicture(dir.file("p.svg")));
  QImageReader reader(in("p.png"));
  EXPECT_EQ(reader.format(), "png");
  EXPECT_EQ(reader.read().size(), QSize(kPictureWidth, kPictureHeight));
  EXPECT_TRUE(QSvgRenderer(in("p.svg")).isValid());
  EXPECT_FALSE(window.savePicture(dir.file("p.bmp")));
  EXPECT_EQ(prompter.messages().size(), 1u);
  EXPECT_FALSE(std::filesystem::exists(dir.file("p.bmp")));
  QProcess cli;
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) env.remove(name);
  cli.setProcessEnvironment(env);
  cli.start(OVARO_BINARY_DIR "/src/app/ovaro-cli",
            {"plot", QString::fromStdString(test::example("learn1.ovi")), "--method", "ce,olf",
             "--kind", "controls", "--variable", "1", "--path", "opt", "--runs", "3", "--png",
             in("c.png"), "--svg", in("c.svg")});
  ASSERT_TRUE(cli.waitForFinished(60000));
  EXPECT_EQ(cli.exitCode(), 0) << cli.readAllStandardError().toStdString();
  EXPECT_FALSE(QImageReader(in("c.png")).read().isNull());
  EXPECT_TRUE(QSvgRenderer(in("c.svg")).isValid());
}

}  // namespace
}  // namespace ovaro::ui
