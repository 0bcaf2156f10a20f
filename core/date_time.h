#pragma once

#include <QDateTime>
#include <QString>
#include <QTimeZone>

namespace qn {

// An instant as stored: UTC, ISO 8601 with milliseconds. An invalid time is a null text and back.
QString toIsoText(const QDateTime& instant);
QDateTime fromIsoText(const QString& text);

// The zone of a stored IANA id; the system's where the id names none.
QTimeZone recordingZone(const QString& timezone);

} // namespace qn
