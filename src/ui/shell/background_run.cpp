#include "ui/shell/background_run.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMainWindow>
#include <QMenuBar>
#include <QMetaObject>
#include <QVariant>
#include <exception>
#include <thread>

namespace ovaro::ui {

namespace {

constexpr const char* kBusyProperty = "ovaroBackgroundRun";

// The worker's side of the Prompter: each message is shown by the window's prompter on the
// user-interface thread while the worker waits for the answer.
class ForwardingPrompter final : public Prompter {
 public:
  ForwardingPrompter(QObject* guiContext, Prompter& target)
      : context_(guiContext), target_(target) {}

  Answer show(const Message& message) override {
    Answer answer = message.defaultAnswer;
    QMetaObject::invokeMethod(
        context_, [&] { answer = target_.show(message); }, Qt::BlockingQueuedConnection);
    return answer;
  }

  std::optional<std::string> askFileName(const FileRequest& request) override {
    std::optional<std::string> name;
    QMetaObject::invokeMethod(
        context_, [&] { name = target_.askFileName(request); }, Qt::BlockingQueuedConnection);
    return name;
  }

 private:
  QObject* context_;
  Prompter& target_;
};

// The worker's side of the Progress: the steps reach the bar on the user-interface thread in the
// order they were made.
class ForwardingProgress final : public Progress {
 public:
  ForwardingProgress(QObject* guiContext, Progress& target)
      : context_(guiContext), target_(target) {}
  void start(int maximum) override {
    QMetaObject::invokeMethod(
        context_, [this, maximum] { target_.start(maximum); }, Qt::QueuedConnection);
  }
  void step() override {
    QMetaObject::invokeMethod(
        context_, [this] { target_.step(); }, Qt::QueuedConnection);
  }
  void finish() override {
    QMetaObject::invokeMethod(
        context_, [this] { target_.finish(); }, Qt::QueuedConnection);
  }

 private:
  QObject* context_;
  Progress& target_;
};

}  // namespace

BackgroundRun::BackgroundRun(QWidget* window, Prompter& prompter, Progress& progress,
                             QPushButton* cancelButton)
    : window_(window), prompter_(prompter), progress_(progress), cancelButton_(cancelButton) {}

bool BackgroundRun::busy(const QWidget* window) {
  return window != nullptr && window->property(kBusyProperty).toBool();
}

void BackgroundRun::run(const std::function<void(Prompter&, Progress&)>& work,
                        std::atomic<bool>& cancel) {
  QObject context;  // lives on this thread: the target of the worker's calls
  ForwardingPrompter prompter(&context, prompter_);
  ForwardingProgress progress(&context, progress_);
  QEventLoop loop;

  // Everything but the progress bar and its Cancel button waits while the runs go on.
  auto* main = qobject_cast<QMainWindow*>(window_.data());
  QWidget* central = main != nullptr ? main->centralWidget() : nullptr;
  QMenuBar* menus = main != nullptr ? main->menuBar() : nullptr;
  if (central != nullptr) central->setEnabled(false);
  if (menus != nullptr) menus->setEnabled(false);
  window_->setProperty(kBusyProperty, true);
  QMetaObject::Connection clicked;
  if (!cancelButton_.isNull()) {
    clicked = QObject::connect(cancelButton_.data(), &QPushButton::clicked, &context,
                               [&cancel] { cancel.store(true); });
    cancelButton_->show();
  }

  std::exception_ptr failure;
  std::thread worker([&] {
    try {
      work(prompter, progress);
    } catch (...) {
      failure = std::current_exception();
    }
    QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
  });
  loop.exec();
  worker.join();
  // The last queued steps of the bar arrive before the window is given back.
  QCoreApplication::sendPostedEvents(&context);

  if (!cancelButton_.isNull()) {
    QObject::disconnect(clicked);
    cancelButton_->hide();
  }
  window_->setProperty(kBusyProperty, false);
  if (central != nullptr) central->setEnabled(true);
  if (menus != nullptr) menus->setEnabled(true);
  if (failure) std::rethrow_exception(failure);
}

}  // namespace ovaro::ui
