#pragma once

#include "core/recording.h"

#include <QDateTime>
#include <QJsonArray>
#include <QString>

namespace qn {

// "dd.MM.yyyy HH:mm:ss t" in the recording's zone, "—" for an invalid time.
QString dateTimeText(const QDateTime& time, const QString& timezone);

// A stored status word as the user reads it.
QString statusText(const QString& status);

// What the details pane shows: times, file, error and journal.
QString detailsText(const Recording& recording, const QJsonArray& events);

} // namespace qn
