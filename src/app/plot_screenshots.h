// The plot windows for the README and the user's guide: a single run of a comparison against the
// desired path, two stored scenarios, the spread over the runs of a comparison, and the
// criterion summary beside it.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>

namespace ovaro::screenshots {

// Renders the windows through `save` (widget, file stem); false when any of them failed.
bool savePlotScreenshots(const QString& examples,
                         const std::function<bool(QWidget&, const QString&)>& save);

}  // namespace ovaro::screenshots
