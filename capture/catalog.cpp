#include "capture/catalog.h"

#include <algorithm>

namespace qn {

namespace {

const SourceEntry* findSource(const QList<SourceEntry>& entries, const QString& id) {
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const SourceEntry& entry) { return entry.id == id; });
    return found == entries.end() ? nullptr : &*found;
}

} // namespace

Selection selectionOf(const Settings& settings) {
    return {static_cast<SourceKind>(settings.sourceKind), settings.sourceId};
}

QString resolveSource(const Selection& selection, const Catalog& catalog) {
    const bool application = selection.kind == SourceKind::Application;
    if (selection.kind != SourceKind::System) {
        const auto& entries = application ? catalog.applications : catalog.outputs;
        if (const SourceEntry* chosen = findSource(entries, selection.id))
            return chosen->id;
    }
    if (application)
        return {};
    const SourceEntry* fallback = findSource(catalog.outputs, catalog.defaultOutput);
    return fallback ? fallback->id : QString();
}

} // namespace qn
