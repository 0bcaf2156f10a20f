#pragma once

#include "core/settings.h"

#include <QList>
#include <QString>

namespace qn {

// What the far side is recorded from; the settings store the numbers.
enum class SourceKind : qint32 {
    System = 0,      // everything played on the default output device
    Device = 1,      // everything played on one chosen output device
    Application = 2, // one application with its helper processes
};

// The user's choice.
struct Selection {
    SourceKind kind = SourceKind::System;
    QString id; // device or application; ignored for System
};

struct SourceEntry {
    QString id;   // stable over restarts, never empty
    QString name; // shown to the user; a device's may be empty
};

// What can be captured right now, in the platform's order.
struct Catalog {
    QList<SourceEntry> outputs;
    QList<SourceEntry> applications;
    QString defaultOutput; // id of an entry of `outputs`, or empty
};

// The choice stored in the settings.
Selection selectionOf(const Settings& settings);

// The id of the source to open now, or empty. A device that is not connected falls back to the
// default output; an application that is not running has no substitute.
QString resolveSource(const Selection& selection, const Catalog& catalog);

} // namespace qn
