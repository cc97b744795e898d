// The one QApplication of the GUI tests, drawn on the offscreen platform so that no display is
// needed, and the user's hand on the dialogs. Every test that makes a widget calls qtApp() first.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>

class QButtonGroup;

namespace ovaro::test {

QApplication& qtApp();

// Replaces the field's text by typing, as a user would (so the length limit applies).
void type(QLineEdit* edit, const QString& text);
// Clicks one of the dialog's standard buttons.
void press(QDialog& dialog, QDialogButtonBox::StandardButton which);
// Clicks the button `id` of a button group, which must have it.
void click(QButtonGroup* group, int id);
// A dialog runner's answer: the dialog accepted as it stands.
int accepted(QDialog& dialog);

}  // namespace ovaro::test
