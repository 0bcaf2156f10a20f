#pragma once

#include <QElapsedTimer>
#include <QProgressBar>

namespace qn {

// A level meter: its value is 0 to 100 % of full scale, its bar shows -60 to 0 dBFS. It gets 50
// levels a second while recording, so it paints plain fills and both meters share one paint pass.
class LevelMeter : public QProgressBar {
    Q_OBJECT

public:
    explicit LevelMeter(QWidget* parent = nullptr);

    // A peak, full scale 1.0; clamped.
    void setLevel(float level);

    // Shows a text over the empty bar; empty for none.
    void setWarning(const QString& text);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int xOf(double decibels) const; // px

    QString warning;
    double shown; // dBFS, as painted; may lag behind by one level
    QElapsedTimer sinceUpdate;
};

} // namespace qn
