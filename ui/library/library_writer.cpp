#include "ui/library/library_writer.h"

#include "storage/library.h"

#include <QElapsedTimer>

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

namespace qn {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr auto kRetryInterval = 1s;
// A try on a locked library blocks the window for seconds; the pause before the next one is longer
// by twice that time.
constexpr int kRestPerTry = 2;
} // namespace

LibraryWriter::LibraryWriter(Library& target) : library(target) {
    retry.setSingleShot(true);
    connect(&retry, &QTimer::timeout, this, &LibraryWriter::flush);
}

void LibraryWriter::update(const Recording& recording) {
    if (recording.id.isEmpty())
        return;
    rows.insert(recording.id, recording);
    if (!retry.isActive())
        flush();
}

void LibraryWriter::addEvent(const QString& recordingId, const QString& kind,
                             const QJsonObject& details) {
    if (recordingId.isEmpty())
        return;
    events.append({recordingId, kind, details, QDateTime::currentDateTimeUtc()});
    if (!retry.isActive())
        flush();
}

void LibraryWriter::forget(const QString& recordingId) {
    rows.remove(recordingId);
    events.removeIf([&](const Event& event) { return event.recordingId == recordingId; });
}

bool LibraryWriter::flush() {
    QElapsedTimer clock;
    clock.start();
    try {
        write();
    } catch (const std::exception& exception) {
        retry.start(kRetryInterval + std::chrono::milliseconds(clock.elapsed()) * kRestPerTry);
        if (!std::exchange(refusing, true))
            Q_EMIT refused(QString::fromUtf8(exception.what()));
        return false;
    }
    retry.stop();
    if (std::exchange(refusing, false))
        Q_EMIT caughtUp();
    return true;
}

// Rows first, so that an event that fails does not hold them up.
void LibraryWriter::write() {
    while (!rows.isEmpty()) {
        library.update(rows.cbegin().value());
        rows.erase(rows.cbegin());
    }
    while (!events.isEmpty()) {
        write(events.first());
        events.removeFirst();
    }
}

// Skips an event whose recording was deleted by another program: it could never be written.
void LibraryWriter::write(const Event& event) {
    try {
        library.event(event.recordingId, event.kind, event.details, event.at);
    } catch (const std::exception&) {
        const QList<Recording> all = library.list({}, {});
        if (std::any_of(all.cbegin(), all.cend(), [&](const Recording& recording) {
                return recording.id == event.recordingId;
            }))
            throw;
    }
}

} // namespace qn
