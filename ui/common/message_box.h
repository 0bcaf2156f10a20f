#pragma once

#include <QMessageBox>

namespace qn {

// What a box shows besides its text, as plain text too.
struct MessageNotes {
    QString informative; // what it means or what to do
    QString detailed;    // the original error text, shown on demand
};

// Shows a modal box. A text too long for the screen is cut to its first and its most telling lines.
QMessageBox::StandardButton showBox(QWidget* parent, QMessageBox::Icon icon, const QString& title,
                                    const QString& text, QMessageBox::StandardButtons buttons,
                                    const MessageNotes& notes = {});

} // namespace qn
