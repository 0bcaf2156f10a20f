#pragma once

#include "core/recording.h"

#include <QDateTime>
#include <QJsonArray>
#include <QString>

namespace qn {

// "dd.MM.yyyy HH:mm:ss" and the zone's abbreviation, in the zone of that IANA id or else the
// system's; "—" for an invalid time.
QString dateTimeText(const QDateTime& instant, const QString& timezone);

// The name shown for a stored status.
QString statusName(const QString& status);

// Times, file, error and journal of a recording, one line each.
QString detailsText(const Recording& recording, const QJsonArray& events);

} // namespace qn
