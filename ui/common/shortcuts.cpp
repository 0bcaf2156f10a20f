#include "ui/common/shortcuts.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

Keys platformKeys(QKeySequence::StandardKey standard, const QString& usual) {
    const Keys keys = QKeySequence::keyBindings(standard);
    return keys.isEmpty() ? Keys{usual} : keys;
}

QShortcut* bind(QWidget* widget, const Keys& keys, Qt::ShortcutContext context,
                const std::function<void()>& action) {
    auto* shortcut = new QShortcut(widget);
    shortcut->setKeys(keys);
    shortcut->setContext(context);
    shortcut->setAutoRepeat(false);
    QObject::connect(shortcut, &QShortcut::activated, widget, action);
    return shortcut;
}

// Keeps a widget from using a key before the shortcuts get it.
class KeyYielder : public QObject {
public:
    KeyYielder(QObject* parent, const QKeySequence& yielded) : QObject(parent), key(yielded) {}

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        return event->type() == QEvent::ShortcutOverride &&
               QKeySequence(static_cast<QKeyEvent*>(event)->keyCombination()) == key;
    }

private:
    QKeySequence key;
};

} // namespace

QShortcut* bindShortcut(QWidget* window, const Keys& keys, QAbstractButton* button) {
    if (button->toolTip().isEmpty())
        button->setToolTip(keyText(keys.first()));
    return bindShortcut(window, keys, [button] { button->click(); });
}

QShortcut* bindShortcut(QWidget* window, const Keys& keys, const std::function<void()>& action) {
    return bind(window, keys, Qt::WindowShortcut, action);
}

QShortcut* bindLocalShortcut(QWidget* widget, const Keys& keys,
                             const std::function<void()>& action) {
    return bind(widget, keys, Qt::WidgetShortcut, action);
}

void yieldKey(QLineEdit* field, const QKeySequence& key) {
    field->installEventFilter(new KeyYielder(field, key));
}

QString keyText(const QKeySequence& key) {
    return key.toString(QKeySequence::NativeText);
}

Keys findKeys() {
    return platformKeys(QKeySequence::Find, u"Ctrl+F"_s);
}

Keys preferencesKeys() {
    return platformKeys(QKeySequence::Preferences, u"Ctrl+,"_s);
}

Keys quitKeys() {
    return platformKeys(QKeySequence::Quit, u"Ctrl+Q"_s);
}

// Backspace too, because many Mac keyboards have no Delete key.
Keys deleteKeys() {
    return {Qt::Key_Delete, Qt::Key_Backspace};
}

} // namespace qn
