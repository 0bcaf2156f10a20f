#include "ui/playback/playback_panel.h"

#include "core/text.h"
#include "ui/common/layouts.h"

#include <QLabel>
#include <QPushButton>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kButtonHeight = 34; // px

QPushButton* playbackButton(const QString& text, const QString& objectName) {
    QPushButton* button = tallButton(text, kButtonHeight);
    button->setObjectName(objectName);
    return button;
}

// Enables or disables each button. A button that is disabled passes its focus to the other one, so
// that pressing Space again undoes the last press.
void enableOneOf(QWidget* first, bool firstOn, QWidget* second, bool secondOn) {
    const bool toSecond = first->hasFocus() && !firstOn && secondOn;
    const bool toFirst = second->hasFocus() && !secondOn && firstOn;
    if (toFirst || toSecond) {
        QWidget* next = toFirst ? first : second;
        next->setEnabled(true);
        next->setFocus();
    }
    first->setEnabled(firstOn);
    second->setEnabled(secondOn);
}

} // namespace

PlaybackPanel::PlaybackPanel(QWidget* parent)
    : QWidget(parent),
      playButton(playbackButton(u"Плей"_s, u"playbackPlay"_s)),
      pauseButton(playbackButton(u"Пауза"_s, u"playbackPause"_s)),
      backButton(playbackButton(u"\u221210 с"_s, u"playbackBack"_s)),
      forwardButton(playbackButton(u"+10 с"_s, u"playbackForward"_s)),
      position(new QLabel) {
    backButton->setToolTip(u"Перемотать на 10 секунд назад"_s);
    forwardButton->setToolTip(u"Перемотать на 10 секунд вперёд"_s);
    pauseButton->setAccessibleName(u"Пауза воспроизведения"_s);
    position->setAccessibleDescription(u"Позиция и длина записи"_s);
    showPosition(0, 0);

    layOutRow(this, {playButton, pauseButton, backButton, forwardButton, position});
    addStretch(this);
}

void PlaybackPanel::apply(const PlaybackRules& rules) {
    enableOneOf(playButton, rules.play, pauseButton, rules.pause);
    backButton->setEnabled(rules.seek);
    forwardButton->setEnabled(rules.seek);
}

void PlaybackPanel::showPosition(qint64 positionMs, qint64 durationMs) {
    position->setText(formatDuration(positionMs) + u" / "_s + formatDuration(durationMs));
}

} // namespace qn
