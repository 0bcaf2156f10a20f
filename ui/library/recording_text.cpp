#include "ui/library/recording_text.h"

#include "core/date_time.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

QString timeText(const QDateTime& instant, const QTimeZone& zone) {
    return instant.isValid() ? instant.toTimeZone(zone).toString(u"dd.MM.yyyy HH:mm:ss t"_s)
                             : u"—"_s;
}

QString eventText(const QJsonObject& event, const QTimeZone& zone) {
    const QJsonDocument details(event["details"_L1].toObject());
    return u'\n' + timeText(fromIsoText(event["at"_L1].toString()), zone) + u" · "_s +
           event["kind"_L1].toString() + u" · "_s +
           QString::fromUtf8(details.toJson(QJsonDocument::Compact));
}

} // namespace

QString dateTimeText(const QDateTime& instant, const QString& timezone) {
    return timeText(instant, recordingZone(timezone));
}

QString statusName(const QString& status) {
    static const QHash<QString, QString> names{
        {u"ready"_s, u"Готово"_s},  {u"recording"_s, u"Запись"_s},
        {u"paused"_s, u"Пауза"_s},  {u"interrupted"_s, u"Нуждается в восстановлении"_s},
        {u"failed"_s, u"Ошибка"_s},
    };
    return names.value(status, u"Подготовка"_s);
}

QString detailsText(const Recording& recording, const QJsonArray& events) {
    const QTimeZone zone = recordingZone(recording.timezone);
    QString text = u"Начало: "_s + timeText(recording.started, zone) + u"   Окончание: "_s +
                   timeText(recording.ended, zone) + u"\nФайл: "_s + recording.path;
    const auto error = recording.details.constFind("error"_L1);
    if (error != recording.details.constEnd())
        text += u"\nОшибка: "_s + error->toString();
    for (const auto& event : events)
        text += eventText(event.toObject(), zone);
    return text;
}

} // namespace qn
