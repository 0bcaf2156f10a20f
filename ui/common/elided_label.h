#pragma once

#include <QLabel>

namespace qn {

// One line of text from outside (a device's name, a warning) that never widens the window. A text
// that doesn't fit ends in "…" and is shown whole in the tool tip.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString line() const;
    QString shownLine() const;
};

} // namespace qn
