#include "ui/common/message_box.h"

#include <QLabel>
#include <QRegularExpression>

#include <algorithm>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kMostShownLines = 15;

// Cuts a long text, mostly a tool's output, to its first line and its last ones, where the reason
// stands. Progress lines are left out.
QString fitting(const QString& text) {
    QStringList lines = text.split(u'\n');
    if (lines.size() <= kMostShownLines)
        return text;
    const QString first = lines.takeFirst();
    static const QRegularExpression progress(u"^\\w+=\\s*\\S*$"_s);
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const QString& line) { return progress.match(line).hasMatch(); }),
                lines.end());
    return first + u"\n…\n"_s +
           lines.mid(std::max<qsizetype>(lines.size() - kMostShownLines, 0)).join(u'\n');
}

} // namespace

QMessageBox::StandardButton showBox(QWidget* parent, QMessageBox::Icon icon, const QString& title,
                                    const QString& text, QMessageBox::StandardButtons buttons,
                                    const MessageNotes& notes) {
    QMessageBox box(icon, title, fitting(text), buttons, parent);
    box.setInformativeText(notes.informative);
    for (QLabel* label : box.findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    box.setDetailedText(notes.detailed);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace qn
