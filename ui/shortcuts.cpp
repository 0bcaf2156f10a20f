#include "ui/shortcuts.h"

#include <QAbstractButton>
#include <QShortcut>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

QKeySequence platformKey(QKeySequence::StandardKey standard, const QString& usual) {
    const auto keys = QKeySequence::keyBindings(standard);
    return keys.isEmpty() ? QKeySequence(usual) : keys.first();
}

} // namespace

void bindShortcut(QWidget* window, const QKeySequence& key, QAbstractButton* button) {
    bindShortcut(window, key, [button] { button->click(); });
}

void bindShortcut(QWidget* window, const QKeySequence& key, const std::function<void()>& action) {
    auto* shortcut = new QShortcut(key, window);
    QObject::connect(shortcut, &QShortcut::activated, window, action);
}

void bindLocalShortcut(QWidget* widget, const QKeySequence& key,
                       const std::function<void()>& action) {
    auto* shortcut = new QShortcut(key, widget);
    shortcut->setContext(Qt::WidgetShortcut);
    QObject::connect(shortcut, &QShortcut::activated, widget, action);
}

QKeySequence preferencesKey() {
    return platformKey(QKeySequence::Preferences, u"Ctrl+,"_s);
}

QKeySequence quitKey() {
    return platformKey(QKeySequence::Quit, u"Ctrl+Q"_s);
}

} // namespace qn
