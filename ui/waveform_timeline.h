#pragma once

#include <QList>
#include <QSlider>
#include <QString>

class QThread;

namespace qn {

// A recording's waveform that doubles as the seek bar: value and range are milliseconds. Decodes on
// a thread of its own; a change of file never waits for the old decode.
class WaveformTimeline : public QSlider {
    Q_OBJECT

public:
    explicit WaveformTimeline(QWidget* parent = nullptr);
    ~WaveformTimeline() override;

    // Shows the waveform of that file; an empty path shows none.
    void setAudioFile(const QString& path);

    // Puts the slider at the widget coordinate x.
    void moveTo(double x);

Q_SIGNALS:
    void waveformReady(bool ok);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QString file;
    QString errorText;
    QList<float> peaks;
    QList<QThread*> decoders;
    quint64 generation = 0;
    bool loading = false;
};

} // namespace qn
