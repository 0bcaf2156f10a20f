#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

namespace qn {

// An instant as stored: UTC, ISO 8601 with milliseconds. An invalid time and a null text stand for
// each other.
QString toIsoText(const QDateTime& instant);
QDateTime fromIsoText(const QString& text);

// The zone with that IANA id, or the system's zone if there is none.
QTimeZone recordingZone(const QString& timezone);

} // namespace qn
