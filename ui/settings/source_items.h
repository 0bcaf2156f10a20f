#pragma once

#include "capture/catalog.h"
#include "capture/microphone.h"
#include "core/settings.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

namespace qn {

struct ComboItem {
    QString text;
    QVariant data;

    bool operator==(const ComboItem&) const = default;
};

struct ComboContents {
    QList<ComboItem> items;
    int current = -1;
    bool enabled = true;
    QString placeholder; // shown while there are no items
};

// The source combo's items for the chosen kind. A chosen source stays listed while not connected.
ComboContents sourceItems(const Settings& settings, const Catalog& catalog);

ComboContents microphoneItems(const Settings& settings, const QList<MicrophoneEntry>& microphones);

} // namespace qn
