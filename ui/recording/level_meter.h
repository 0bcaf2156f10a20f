#pragma once

#include <QElapsedTimer>
#include <QProgressBar>

namespace qn {

// A level from 0 to 100 % as one filled bar. Updated 50 times a second while recording, so it
// paints itself as two plain fills and both meters share one paint pass.
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
    int filledWidth() const; // px

    QString warning;
    int shown = 0; // the value as painted, at most one step behind
    QElapsedTimer sinceUpdate;
};

} // namespace qn
