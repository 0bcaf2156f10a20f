#pragma once

#include <QList>
#include <QSlider>
#include <QString>

class QPainter;
class QThread;

namespace qn {

struct DecodedPeaks;

// A recording's waveform, which is also the seek bar: value and range are milliseconds. Decodes on
// a thread of its own; a change of file never waits for the old decode.
class WaveformTimeline : public QSlider {
    Q_OBJECT

public:
    explicit WaveformTimeline(QWidget* parent = nullptr);
    ~WaveformTimeline() override;

    // Shows the waveform of that file; an empty path shows none.
    void setAudioFile(const QString& path);

    // Moves the slider to the widget coordinate x.
    void moveTo(double x);

Q_SIGNALS:
    void waveformReady(bool ok);

protected:
    void sliderChange(SliderChange change) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void interruptDecoders();
    void startDecoder();
    void applyResult(quint64 ownGeneration, const DecodedPeaks& result);
    void setPeaks(const QList<float>& newPeaks);

    double playheadX() const;
    QColor quietColor() const;
    void paintBackground(QPainter& painter, const QRectF& area, double playhead,
                         const QColor& accent) const;
    void paintColumns(QPainter& painter, const QRectF& area, double playhead, const QColor& accent);
    void paintHint(QPainter& painter, const QRectF& area) const;
    static void paintPlayhead(QPainter& painter, const QRectF& area, double playhead,
                              const QColor& accent);
    void paintFocus(QPainter& painter, const QColor& accent) const;

    QString file;             // empty for none
    QString errorText;        // of the last finished decode
    QList<float> peaks;       // 0.0 to 1.0, evenly spaced over the file
    QList<QThread*> decoders; // still running; all but the last are being interrupted
    quint64 generation = 0;   // counts changes of `file`, so that older results are dropped
    bool loading = false;
    QList<float> columns; // the loudest peak of each painted column; empty until painted
};

} // namespace qn
