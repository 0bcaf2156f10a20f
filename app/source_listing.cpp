#include "app/source_listing.h"

#include "capture/capture_backend.h"

#include <QTextStream>

#include <cstdio>

namespace qn {

int listSources() {
    const auto backend = makeCaptureBackend();
    const Catalog catalog = backend->catalog();
    QTextStream out(stdout);
    out << "Default: " << catalog.defaultOutput << '\n';
    for (const SourceEntry& output : catalog.outputs)
        out << "Output: " << output.id << " | " << output.name << '\n';
    for (const SourceEntry& application : catalog.applications)
        out << "Application: " << application.id << " | " << application.name << '\n';
    return 0;
}

} // namespace qn
