#pragma once

#include <QKeySequence>

#include <functional>

class QAbstractButton;
class QWidget;

namespace qn {

// The key presses the button, so that it works exactly when the button is enabled.
void bindShortcut(QWidget* window, const QKeySequence& key, QAbstractButton* button);

void bindShortcut(QWidget* window, const QKeySequence& key, const std::function<void()>& action);

// Only while that widget has the focus, never while the user types elsewhere.
void bindLocalShortcut(QWidget* widget, const QKeySequence& key,
                       const std::function<void()>& action);

// The platform's own keys, with a usual one where it has none.
QKeySequence preferencesKey();
QKeySequence quitKey();

} // namespace qn
