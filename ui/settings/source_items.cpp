#include "ui/settings/source_items.h"

#include <algorithm>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

// Selects the item with the data `wanted`. If it is missing, it is appended as `absentText`, or the
// first item is selected if nothing is wanted.
void select(ComboContents& contents, const QVariant& wanted, bool wantedIsEmpty,
            const QString& absentText) {
    auto& items = contents.items;
    const auto found = std::find_if(items.cbegin(), items.cend(),
                                    [&](const ComboItem& item) { return item.data == wanted; });
    if (found != items.cend()) {
        contents.current = static_cast<int>(found - items.cbegin());
    } else if (wantedIsEmpty) {
        contents.current = items.isEmpty() ? -1 : 0;
    } else {
        items.append({absentText, wanted});
        contents.current = static_cast<int>(items.size()) - 1;
    }
}

ComboContents systemItem(const Catalog& catalog) {
    QString name = u"Системное устройство"_s;
    for (const SourceEntry& output : catalog.outputs) {
        if (output.id == catalog.defaultOutput)
            name = output.name;
    }
    return {.items = {{name, {}}}, .current = 0, .enabled = false, .placeholder = {}};
}

} // namespace

ComboContents sourceItems(const Settings& settings, const Catalog& catalog) {
    const auto kind = static_cast<SourceKind>(settings.sourceKind);
    if (kind == SourceKind::System)
        return systemItem(catalog);
    ComboContents contents;
    if (kind == SourceKind::Application)
        contents.placeholder = u"Нет приложений со звуком"_s;
    const auto& entries = kind == SourceKind::Application ? catalog.applications : catalog.outputs;
    for (const SourceEntry& entry : entries)
        contents.items.append({entry.name, entry.id});
    select(contents, settings.sourceId, settings.sourceId.isEmpty(),
           u"Не подключено: "_s + settings.sourceId);
    return contents;
}

ComboContents microphoneItems(const Settings& settings, const QList<MicrophoneEntry>& microphones) {
    ComboContents contents;
    contents.items.append({u"Системный микрофон (по умолчанию)"_s, QByteArray("")});
    for (const MicrophoneEntry& microphone : microphones)
        contents.items.append({microphone.name, microphone.id});
    select(contents, settings.microphoneId, settings.microphoneId.isEmpty(),
           u"Не подключено: выбранный микрофон"_s);
    contents.enabled = settings.microphoneEnabled;
    return contents;
}

} // namespace qn
