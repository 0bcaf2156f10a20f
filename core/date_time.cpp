#include "core/date_time.h"

#include <QStringView>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kUnixEpochJulianDay = 2'440'588;
constexpr qsizetype kLongestZoneId = 64; // the longest there is has 32 letters

// The decimal number in [from, from + length), or -1 when it holds anything but ASCII digits.
int number(QStringView text, qsizetype from, qsizetype length) {
    int value = 0;
    for (const QChar c : text.sliced(from, length)) {
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c.unicode() - u'0');
    }
    return value;
}

bool hasPlainShape(QStringView text) {
    return text.size() == 24 && text[4] == u'-' && text[7] == u'-' && text[10] == u'T' &&
           text[13] == u':' && text[16] == u':' && text[19] == u'.' && text[23] == u'Z';
}

// Invalid for whatever is not exactly "yyyy-MM-ddTHH:mm:ss.zzzZ" with every field in its range.
QDateTime fromPlainText(QStringView text) {
    if (!hasPlainShape(text))
        return {};
    const int year = number(text, 0, 4);
    const int month = number(text, 5, 2);
    const int day = number(text, 8, 2);
    const int hour = number(text, 11, 2);
    const int minute = number(text, 14, 2);
    const int second = number(text, 17, 2);
    const int ms = number(text, 20, 3);
    if (year < 1 || !QDate::isValid(year, month, day) || !QTime::isValid(hour, minute, second, ms))
        return {};
    const qint64 days = QDate(year, month, day).toJulianDay() - kUnixEpochJulianDay;
    // A copy of a UTC time, because making one costs more than all of the above.
    static const QDateTime epoch = QDateTime::fromMSecsSinceEpoch(0).toUTC();
    QDateTime instant = epoch;
    instant.setMSecsSinceEpoch((((days * 24 + hour) * 60 + minute) * 60 + second) * 1000 + ms);
    return instant;
}

} // namespace

QString toIsoText(const QDateTime& instant) {
    return instant.isValid() ? instant.toUTC().toString(Qt::ISODateWithMs) : QString();
}

QDateTime fromIsoText(const QString& text) {
    const QDateTime instant = fromPlainText(text);
    return instant.isValid() ? instant : QDateTime::fromString(text, Qt::ISODateWithMs);
}

QTimeZone recordingZone(const QString& timezone) {
    // Qt opens the id as a path below the zone folder: a row must not lead it out of there. And it
    // takes an endless word for a zone of that name.
    if (!timezone.contains(".."_L1) && timezone.size() <= kLongestZoneId) {
        const QTimeZone zone(timezone.toUtf8());
        if (zone.isValid())
            return zone;
    }
    return QTimeZone::systemTimeZone();
}

} // namespace qn
