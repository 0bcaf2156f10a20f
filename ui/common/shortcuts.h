#pragma once

#include <QKeySequence>
#include <QList>

#include <functional>

class QAbstractButton;
class QLineEdit;
class QShortcut;
class QWidget;

namespace qn {

using Keys = QList<QKeySequence>;

// A key works once while it is held, unless the caller lets the shortcut repeat.

// The key presses the button, so that it works exactly when the button is enabled.
QShortcut* bindShortcut(QWidget* window, const Keys& keys, QAbstractButton* button);

QShortcut* bindShortcut(QWidget* window, const Keys& keys, const std::function<void()>& action);

// Only while that widget has the focus, never while the user types elsewhere.
QShortcut* bindLocalShortcut(QWidget* widget, const Keys& keys,
                             const std::function<void()>& action);

// Leaves a key to the window's shortcut that the field would take for moving its cursor.
void yieldKey(QLineEdit* field, const QKeySequence& key);

// As tool tips name a key.
QString keyText(const QKeySequence& key);

// The platform's own keys, with a usual one where it has none.
Keys findKeys();
Keys preferencesKeys();
Keys quitKeys();
Keys deleteKeys();

} // namespace qn
