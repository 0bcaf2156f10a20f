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

// A key that is held down counts once, unless the caller turns auto-repeat on.

// The key clicks the button, so it works only while the button is enabled. The button's tool tip
// names the key if it has no text of its own.
QShortcut* bindShortcut(QWidget* window, const Keys& keys, QAbstractButton* button);

QShortcut* bindShortcut(QWidget* window, const Keys& keys, const std::function<void()>& action);

// Works only while the widget itself has the focus.
QShortcut* bindLocalShortcut(QWidget* widget, const Keys& keys,
                             const std::function<void()>& action);

// Leaves the key to the window's shortcut; the field would use it to move its cursor.
void yieldKey(QLineEdit* field, const QKeySequence& key);

// The key's name as tool tips show it.
QString keyText(const QKeySequence& key);

// The platform's own keys, or the usual one if the platform has none.
Keys findKeys();
Keys preferencesKeys();
Keys quitKeys();
Keys deleteKeys();

} // namespace qn
