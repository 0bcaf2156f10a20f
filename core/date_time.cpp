#include "core/date_time.h"

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kLongestZoneId = 64; // the longest real one has 32 characters

} // namespace

QString toIsoText(const QDateTime& instant) {
    return instant.isValid() ? instant.toUTC().toString(Qt::ISODateWithMs) : QString();
}

QDateTime fromIsoText(const QString& text) {
    return QDateTime::fromString(text, Qt::ISODateWithMs);
}

QTimeZone recordingZone(const QString& timezone) {
    // Qt opens the id as a path below the zone folder, and a database row must not lead it outside.
    // Qt also accepts a word of any length as a zone of that name.
    if (!timezone.contains(".."_L1) && timezone.size() <= kLongestZoneId) {
        const QTimeZone zone(timezone.toUtf8());
        if (zone.isValid())
            return zone;
    }
    return QTimeZone::systemTimeZone();
}

} // namespace qn
