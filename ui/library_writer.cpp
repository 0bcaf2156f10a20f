#include "ui/library_writer.h"

#include "storage/library.h"

#include <exception>

namespace qn {

using namespace std::chrono_literals;

namespace {
// A locked library holds every try, and with it the window, for up to 5 s.
constexpr auto kRetryInterval = 10s;
} // namespace

LibraryWriter::LibraryWriter(Library& target) : library(target) {
    retry.setInterval(kRetryInterval);
    connect(&retry, &QTimer::timeout, this, &LibraryWriter::flush);
}

void LibraryWriter::update(const Recording& recording) {
    rows.insert(recording.id, recording);
    if (!retry.isActive())
        flush();
}

void LibraryWriter::event(const QString& recordingId, const QString& kind,
                          const QJsonObject& details) {
    events.append({recordingId, kind, details});
    if (!retry.isActive())
        flush();
}

void LibraryWriter::flush() {
    try {
        write();
        retry.stop();
    } catch (const std::exception& exception) {
        const bool first = !retry.isActive();
        retry.start();
        if (first)
            Q_EMIT refused(QString::fromUtf8(exception.what()));
    }
}

void LibraryWriter::write() {
    while (!events.isEmpty()) {
        const Event& event = events.first();
        library.event(event.recordingId, event.kind, event.details);
        events.removeFirst();
    }
    while (!rows.isEmpty()) {
        library.update(rows.cbegin().value());
        rows.erase(rows.cbegin());
    }
}

} // namespace qn
