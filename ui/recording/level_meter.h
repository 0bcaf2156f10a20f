#pragma once

#include <QElapsedTimer>
#include <QProgressBar>

namespace qn {

// A level: its value is 0 to 100 % of full scale, its bar -60 to 0 dBFS in the usual colours.
// Updated 50 times a second while recording, so it paints itself as plain fills and both meters
// share one paint pass.
class LevelMeter : public QProgressBar {
    Q_OBJECT

public:
    explicit LevelMeter(QWidget* parent = nullptr);

    // A peak, full scale 1.0; clamped.
    void setLevel(float level);

    // A text over the empty bar; empty for none.
    void setWarning(const QString& text);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int xOf(double decibels) const; // px

    QString warning;
    double shown; // dBFS, as painted; at most one step behind
    QElapsedTimer sinceUpdate;
};

} // namespace qn
