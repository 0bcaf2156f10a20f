#include "ui/recording_text.h"

#include <QHash>
#include <QJsonDocument>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

QString dateTimeText(const QDateTime& instant, const QTimeZone& zone) {
    return instant.isValid() ? instant.toTimeZone(zone).toString(u"dd.MM.yyyy HH:mm:ss t"_s)
                             : u"—"_s;
}

// In place: a journal may have thousands of lines.
void appendEvent(QString& text, const QJsonObject& event, const QTimeZone& zone) {
    const QJsonDocument details(event["details"_L1].toObject());
    text += u'\n';
    text += dateTimeText(fromIsoText(event["at"_L1].toString()), zone);
    text += u" · "_s;
    text += event["kind"_L1].toString();
    text += u" · "_s;
    text += QString::fromUtf8(details.toJson(QJsonDocument::Compact));
}

} // namespace

QString dateTimeText(const QDateTime& instant, const QString& timezone) {
    return instant.isValid() ? dateTimeText(instant, recordingZone(timezone)) : u"—"_s;
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
    const QTimeZone zone = recordingZone(recording.timezone);
    // One multi-argument call: a "%1" in a path stays as it is.
    QString text = u"Начало: %1   Окончание: %2\nФайл: %3"_s.arg(
        dateTimeText(recording.started, zone), dateTimeText(recording.ended, zone), recording.path);
    const auto error = recording.details.constFind("error"_L1);
    if (error != recording.details.constEnd())
        text += u"\nОшибка: "_s + error->toString();
    for (const auto& event : events)
        appendEvent(text, event.toObject(), zone);
    return text;
}

} // namespace qn
