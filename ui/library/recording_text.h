#pragma once

#include "core/recording.h"

#include <QDateTime>
#include <QJsonArray>
#include <QString>

namespace qn {

// "dd.MM.yyyy HH:mm:ss" and the abbreviation, in that zone or the system's; "—" when invalid.
QString dateTimeText(const QDateTime& instant, const QString& timezone);

// The name shown for a stored status.
QString statusName(const QString& status);

// Times, file, error and journal of a recording, one line each.
QString detailsText(const Recording& recording, const QJsonArray& events);

} // namespace qn
