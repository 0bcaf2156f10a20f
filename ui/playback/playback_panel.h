#pragma once

#include "ui/common/control_rules.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace qn {

// The player's buttons and the position label; the waveform above it is the seek bar.
class PlaybackPanel : public QWidget {
    Q_OBJECT

public:
    explicit PlaybackPanel(QWidget* parent = nullptr);

    void apply(const PlaybackRules& rules);
    void showPosition(qint64 positionMs, qint64 durationMs);

    QPushButton* const playButton;
    QPushButton* const pauseButton;
    QPushButton* const backButton;
    QPushButton* const forwardButton;

private:
    QLabel* position = nullptr;
};

} // namespace qn
