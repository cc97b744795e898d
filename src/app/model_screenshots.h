// Screenshots of the dialogs that build a model: the specification dialogs, every matrix-entry
// dialog, the matrix editor (with a cell that does not read as a number) and the acronym window.
#pragma once

#include <QString>
#include <functional>

class QWidget;

namespace ovaro {

// Saves one widget as OUT/name.png; false when it cannot be written.
using SaveShot = std::function<bool(QWidget&, const QString& name)>;

bool saveModelBuildingShots(const QString& examples, const SaveShot& save);

}  // namespace ovaro
