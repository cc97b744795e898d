// The one QApplication of the GUI tests, drawn on the offscreen platform so that no display is
// needed. Every test that makes a widget calls qtApp() first.
#pragma once

#include <QApplication>

namespace ovaro::test {

QApplication& qtApp();

}  // namespace ovaro::test
