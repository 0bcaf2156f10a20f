#include "ui/recording_text.h"

#include "core/date_time.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace qn {

using namespace Qt::StringLiterals;

QString dateTimeText(const QDateTime& time, const QString& timezone) {
    if (!time.isValid())
        return u"—"_s;
    return time.toTimeZone(recordingZone(timezone)).toString(u"dd.MM.yyyy HH:mm:ss t"_s);
}

QString statusText(const QString& status) {
    if (status == "ready"_L1)
        return u"Готово"_s;
    if (status == "recording"_L1)
        return u"Запись"_s;
    if (status == "paused"_L1)
        return u"Пауза"_s;
    if (status == "interrupted"_L1)
        return u"Нуждается в восстановлении"_s;
    if (status == "failed"_L1)
        return u"Ошибка"_s;
    return u"Подготовка"_s;
}

QString detailsText(const Recording& recording, const QJsonArray& events) {
    QString text = u"Начало: %1   Окончание: %2\nФайл: %3"_s.arg(
        dateTimeText(recording.started, recording.timezone),
        dateTimeText(recording.ended, recording.timezone), recording.path);
    if (recording.details.contains("error"_L1))
        text += u"\nОшибка: "_s + recording.details.value("error"_L1).toString();
    for (const QJsonValue& value : events) {
        const QJsonObject event = value.toObject();
        const QJsonDocument details(event.value("details"_L1).toObject());
        text += u'\n' +
                dateTimeText(fromIsoText(event.value("at"_L1).toString()), recording.timezone) +
                u" · "_s + event.value("kind"_L1).toString() + u" · "_s +
                QString::fromUtf8(details.toJson(QJsonDocument::Compact));
    }
    return text;
}

} // namespace qn
