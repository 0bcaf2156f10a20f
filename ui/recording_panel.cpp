#include "ui/recording_panel.h"

#include "core/text.h"
#include "ui/elided_label.h"
#include "ui/layouts.h"
#include "ui/level_meter.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

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

QPushButton* tallButton(const QString& text) {
    auto* button = new QPushButton(text);
    button->setMinimumHeight(kButtonHeight);
    return button;
}

void setCaption(QLabel* label, LevelMeter* meter, const QString& caption) {
    label->setText(caption);
    meter->setAccessibleName(caption);
}

} // namespace

RecordingPanel::RecordingPanel(QWidget* parent) : QGroupBox(u"Созвон"_s, parent) {
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
    return rowOf({titleField, elapsed});
}

QWidget* RecordingPanel::buildButtonRow() {
    record = tallButton(u"●  Начать запись"_s);
    record->setObjectName(u"record"_s);
    pause = tallButton(u"Пауза"_s);
    stop = tallButton(u"Остановить"_s);
    status = new QLabel(u"Готов к записи"_s);
    auto* row = rowOf({record, pause, stop, status});
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
    // A button that is switched off hands the focus on, to the search field: it comes back.
    focusIsOurs = focusIsOurs || (focusWidget() && focusWidget()->hasFocus());
    record->setEnabled(isResting(state));
    titleField->setEnabled(isResting(state));
    pause->setEnabled(active);
    stop->setEnabled(active);
    pause->setText(state == State::Paused ? u"Продолжить"_s : u"Пауза"_s);
    status->setText(statusText(state));
    takeFocusBack(active ? pause : record);
}

void RecordingPanel::setElapsed(qint64 ms) {
    elapsed->setText(formatDuration(ms));
}

void RecordingPanel::setLevels(float microphone, float system) {
    microphoneMeter->setLevel(microphone);
    systemMeter->setLevel(system);
}

void RecordingPanel::setMicrophoneCaption(const QString& caption) {
    setCaption(microphoneCaption, microphoneMeter, caption);
}

void RecordingPanel::setSystemCaption(const QString& caption) {
    setCaption(systemCaption, systemMeter, caption);
}

void RecordingPanel::setRecordEnabled(bool enabled) {
    focusIsOurs = focusIsOurs || record->hasFocus();
    record->setEnabled(enabled);
    takeFocusBack(record);
}

void RecordingPanel::takeFocusBack(QPushButton* button) {
    if (focusIsOurs && button->isEnabled()) {
        button->setFocus();
        focusIsOurs = false;
    }
}

} // namespace qn
