#include "ui/library/recording_text.h"

#include "core/date_time.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

#include <limits>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kMostRemembered = 64;

void appendTwoDigits(QString& text, int number, const QString& end) {
    text += QChar(u'0' + number / 10 % 10);
    text += QChar(u'0' + number % 10);
    text += end;
}

// Writes instants in one zone. A journal may have thousands of lines: so the zone is asked only
// once between two changes of its clocks, and no format string is read.
class ZonedTimes {
public:
    explicit ZonedTimes(const QTimeZone& ofZone) : zone(ofZone) {}

    void append(QString& text, const QDateTime& instant) {
        if (!instant.isValid()) {
            text += u'—';
            return;
        }
        const qint64 ms = instant.toMSecsSinceEpoch();
        if (ms < since || ms >= until)
            askZone(instant);
        const QDateTime local = instant.toUTC().addMSecs(offsetMs);
        const QDate date = local.date();
        const QTime time = local.time();
        appendTwoDigits(text, date.day(), u"."_s);
        appendTwoDigits(text, date.month(), u"."_s);
        appendTwoDigits(text, date.year() / 100, {});
        appendTwoDigits(text, date.year() % 100, u" "_s);
        appendTwoDigits(text, time.hour(), u":"_s);
        appendTwoDigits(text, time.minute(), u":"_s);
        appendTwoDigits(text, time.second(), u" "_s);
        text += abbreviation;
    }

private:
    void askZone(const QDateTime& instant) {
        const QDateTime change = zone.nextTransition(instant).atUtc;
        since = instant.toMSecsSinceEpoch();
        until = change.isValid() ? change.toMSecsSinceEpoch() : std::numeric_limits<qint64>::max();
        offsetMs = qint64(zone.offsetFromUtc(instant)) * 1000;
        abbreviation = instant.toTimeZone(zone).toString(u"t"_s);
    }

    QTimeZone zone;
    qint64 since = 0; // offset and abbreviation hold from here on
    qint64 until = 0;
    qint64 offsetMs = 0;
    QString abbreviation;
};

// Details recur in a journal, so that few need writing out.
class JsonTexts {
public:
    QString of(const QJsonObject& object) {
        const auto known = texts.constFind(object);
        if (known != texts.cend())
            return *known;
        QString text = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
        if (texts.size() < kMostRemembered)
            texts.insert(object, text);
        return text;
    }

private:
    QHash<QJsonObject, QString> texts;
};

// In place: a journal may have thousands of lines.
void appendEvent(QString& text, const QJsonObject& event, ZonedTimes& times, JsonTexts& details) {
    text += u'\n';
    times.append(text, fromIsoText(event["at"_L1].toString()));
    text += u" · "_s;
    text += event["kind"_L1].toString();
    text += u" · "_s;
    text += details.of(event["details"_L1].toObject());
}

} // namespace

QString dateTimeText(const QDateTime& instant, const QString& timezone) {
    QString text;
    ZonedTimes(recordingZone(timezone)).append(text, instant);
    return text;
}

QString statusText(const QString& status) {
    static const QHash<QString, QString> names{
        {u"ready"_s, u"Готово"_s},  {u"recording"_s, u"Запись"_s},
        {u"paused"_s, u"Пауза"_s},  {u"interrupted"_s, u"Нуждается в восстановлении"_s},
        {u"failed"_s, u"Ошибка"_s},
    };
    return names.value(status, u"Подготовка"_s);
}

QString detailsText(const Recording& recording, const QJsonArray& events) {
    ZonedTimes times(recordingZone(recording.timezone));
    QString text = u"Начало: "_s;
    times.append(text, recording.started);
    text += u"   Окончание: "_s;
    times.append(text, recording.ended);
    text += u"\nФайл: "_s + recording.path;
    const auto error = recording.details.constFind("error"_L1);
    if (error != recording.details.constEnd())
        text += u"\nОшибка: "_s + error->toString();
    JsonTexts details;
    for (const auto& event : events)
        appendEvent(text, event.toObject(), times, details);
    return text;
}

} // namespace qn
