#pragma once

#include <QMessageBox>

namespace qn {

// What a box says besides its text; none of it is taken for markup.
struct MessageNotes {
    QString informative; // what it means or what to do
    QString detailed;    // somebody else's words, shown on demand
};

// A modal box. A text longer than the screen is cut to its first and its last telling lines.
QMessageBox::StandardButton showBox(QWidget* parent, QMessageBox::Icon icon, const QString& title,
                                    const QString& text, QMessageBox::StandardButtons buttons,
                                    const MessageNotes& notes = {});

} // namespace qn
