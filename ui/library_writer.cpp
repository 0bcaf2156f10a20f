#include "ui/library_writer.h"

#include "storage/library.h"

#include <QElapsedTimer>

#include <chrono>
#include <exception>
#include <utility>

namespace qn {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {
constexpr auto kRetryInterval = 1s;
// A locked library holds every try, and with it the window, for seconds: it gets twice as long
// between the tries.
constexpr int kRestPerTry = 2;
} // namespace

LibraryWriter::LibraryWriter(Library& target) : library(target) {
    retry.setSingleShot(true);
    connect(&retry, &QTimer::timeout, this, &LibraryWriter::flush);
}

void LibraryWriter::update(const Recording& recording) {
    rows.insert(recording.id, recording);
    if (!retry.isActive())
        flush();
}

void LibraryWriter::addEvent(const QString& recordingId, const QString& kind,
                             const QJsonObject& details) {
    events.append({recordingId, kind, details});
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
        refusing = false;
        retry.stop();
        return true;
    } catch (const std::exception& exception) {
        retry.start(kRetryInterval + std::chrono::milliseconds(clock.elapsed()) * kRestPerTry);
        if (!std::exchange(refusing, true))
            Q_EMIT refused(u"Ошибка библиотеки: "_s + QString::fromUtf8(exception.what()));
        return false;
    }
}

// Rows first: no event may keep them waiting.
void LibraryWriter::write() {
    while (!rows.isEmpty()) {
        library.update(rows.cbegin().value());
        rows.erase(rows.cbegin());
    }
    while (!events.isEmpty()) {
        const Event& event = events.first();
        library.event(event.recordingId, event.kind, event.details);
        events.removeFirst();
    }
}

} // namespace qn
