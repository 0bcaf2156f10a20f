#include "ui/recording/recording_panel.h"

#include "core/text.h"
#include "ui/common/announce.h"
#include "ui/common/contrast.h"
#include "ui/common/elided_label.h"
#include "ui/common/layouts.h"
#include "ui/recording/level_meter.h"

#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kButtonHeight = 38; // px

QString statusText(State state) {
    switch (state) {
    case State::Starting:
        return u"Подготовка…"_s;
    case State::Recording:
        return u"● Записываем"_s;
    case State::Paused:
        return u"На паузе"_s;
    case State::Finalizing:
        return u"Сохраняем…"_s;
    case State::Failed:
        return u"Запись завершена с ошибкой"_s;
    case State::Idle:
        break;
    }
    return u"Готов к записи"_s;
}

// Gives the label's text the alarm colour, or its usual one.
void setAlarming(QLabel* label, bool alarming) {
    QPalette colours;
    if (alarming)
        colours.setColor(QPalette::WindowText,
                         legible(kAlarmColour,
                                 label->parentWidget()->palette().color(QPalette::Window),
                                 kTextContrast));
    label->setPalette(colours);
}

void setCaption(QLabel* label, LevelMeter* meter, const QString& caption, bool isWarning) {
    label->setText(caption);
    setAlarming(label, isWarning);
    meter->setAccessibleName(caption);
    if (isWarning)
        announce(label, caption);
}

} // namespace

RecordingPanel::RecordingPanel(QWidget* parent)
    : QGroupBox(u"Созвон"_s, parent),
      recordButton(tallButton(u"●  Начать запись"_s, kButtonHeight)),
      pauseButton(tallButton(u"Продолжить"_s, kButtonHeight)),
      stopButton(tallButton(u"Остановить"_s, kButtonHeight)) {
    recordButton->setObjectName(u"record"_s);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildTitleRow());
    layout->addWidget(buildButtonRow());
    layout->addWidget(buildMeterRow());
    setMicrophoneCaption(u"Микрофон"_s);
    setSystemCaption(u"Звук собеседников"_s);
}

QWidget* RecordingPanel::buildTitleRow() {
    titleField = new QLineEdit;
    titleField->setPlaceholderText(u"Название созвона — можно оставить пустым"_s);
    titleField->setAccessibleName(u"Название созвона"_s);
    elapsed = new QLabel(u"00:00:00"_s);
    elapsed->setStyleSheet(u"font-size:30px;font-weight:600;font-family:monospace"_s);
    elapsed->setAccessibleDescription(u"Длительность записи"_s);
    return rowOf({titleField, elapsed});
}

QWidget* RecordingPanel::buildButtonRow() {
    status = new QLabel(u"Готов к записи"_s);
    pauseButton->setText(u"Пауза"_s); // created with the longer text, so its width stays the same
    auto* row = rowOf({recordButton, pauseButton, stopButton, status});
    addStretch(row);
    return row;
}

QWidget* RecordingPanel::buildMeterRow() {
    microphoneCaption = new ElidedLabel;
    microphoneMeter = new LevelMeter;
    systemCaption = new ElidedLabel;
    systemMeter = new LevelMeter;
    return rowOf(
        {columnOf({microphoneCaption, microphoneMeter}), columnOf({systemCaption, systemMeter})});
}

QString RecordingPanel::title() const {
    return titleField->text().trimmed();
}

void RecordingPanel::showState(State state) {
    const bool active = state == State::Recording || state == State::Paused;
    if (std::exchange(isRecording, state == State::Recording) != isRecording) {
        clock.start();
        microphoneSilence.restart(0);
        systemSilence.restart(0);
        watchSilence(0, 0);
    }
    if (state == State::Starting) {
        setMicrophoneCaption(u"Микрофон"_s);
        setSystemCaption(u"Звук собеседников"_s);
    }
    enable(recordButton, isResting(state));
    enable(titleField, isResting(state));
    enable(pauseButton, active);
    enable(stopButton, active);
    pauseButton->setText(state == State::Paused ? u"Продолжить"_s : u"Пауза"_s);
    if (status->text() != statusText(state)) {
        status->setText(statusText(state));
        announce(status, status->text());
    }
    for (QLabel* label : {status, elapsed})
        setAlarming(label, state == State::Recording);
    passFocusTo(active ? pauseButton : recordButton);
}

// The alarm's colour depends on the background.
void RecordingPanel::changeEvent(QEvent* event) {
    QGroupBox::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    for (QLabel* label : {status, elapsed, systemCaption})
        setAlarming(label, label->testAttribute(Qt::WA_SetPalette));
}

void RecordingPanel::setElapsed(qint64 ms) {
    elapsed->setText(formatDuration(ms));
}

void RecordingPanel::setLevels(float microphone, float system) {
    microphoneMeter->setLevel(microphone);
    systemMeter->setLevel(system);
    watchSilence(microphone, system);
}

void RecordingPanel::setMicrophoneUsed(bool used) {
    microphoneMeter->setEnabled(used);
}

void RecordingPanel::watchSilence(float microphone, float system) {
    const auto silentMs = [&](SilenceWatch& watch, LevelMeter* meter, float level) {
        const bool expected = isRecording && meter->isEnabled();
        const qint64 ms = expected ? watch.update(level, clock.elapsed()) : 0;
        meter->setWarning(ms > 0 ? u"Тишина уже "_s + formatDuration(ms) : QString());
        return ms;
    };
    const qint64 systemMs = silentMs(systemSilence, systemMeter, system);
    const qint64 microphoneMs = silentMs(microphoneSilence, microphoneMeter, microphone);
    QString text;
    if (systemMs > 0)
        text = u"Собеседников не слышно уже %1. Проверьте источник в настройках после остановки."_s;
    else if (microphoneMs > 0)
        text = u"Микрофон молчит уже %1. Не выключен ли он?"_s;
    if (text == std::exchange(advice, text))
        return;
    if (!text.isEmpty()) {
        text = text.arg(formatDuration(systemMs > 0 ? systemMs : microphoneMs));
        announce(systemMs > 0 ? systemMeter : microphoneMeter, text);
    }
    Q_EMIT silenceChanged(text);
}

void RecordingPanel::setMicrophoneCaption(const QString& caption) {
    setCaption(microphoneCaption, microphoneMeter, caption, false);
}

void RecordingPanel::setSystemCaption(const QString& caption, bool isWarning) {
    setCaption(systemCaption, systemMeter, caption, isWarning);
}

void RecordingPanel::setRecordEnabled(bool enabled) {
    enable(recordButton, enabled);
    passFocusTo(recordButton);
}

// A control that is disabled would pass its focus on to the search field. The status takes it
// instead, until passFocusTo or the user moves it on.
void RecordingPanel::enable(QWidget* control, bool enabled) {
    if (!enabled && window()->focusWidget() == control)
        status->setFocus();
    control->setEnabled(enabled);
}

void RecordingPanel::passFocusTo(QPushButton* button) {
    if (button->isEnabled() && window()->focusWidget() == status)
        button->setFocus();
}

} // namespace qn
