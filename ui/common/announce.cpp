#include "ui/common/announce.h"

#include <QAccessible>
#include <QWidget>

namespace qn {

void announce(QWidget* widget, const QString& text) {
    QAccessibleEvent alert(widget, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent words(widget, text);
    QAccessible::updateAccessibility(&words);
#else
    Q_UNUSED(text)
#endif
}

} // namespace qn
