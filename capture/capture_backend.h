#pragma once

#include "capture/catalog.h"
#include "core/audio_block.h"

#include <QObject>
#include <QString>

#include <memory>

namespace qn {

// Captures what the computer plays. Stopped or capturing one source; lives on its owner's thread,
// where catalog, start and stop are called. Every user owns a backend of its own.
class CaptureBackend : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Enumerates the sources now, without disturbing a capture in progress.
    virtual Catalog catalog() const = 0;

    // Stops whatever runs, then captures `sourceId` (from resolveSource) as `selection.kind` says.
    // False with a message for the user in `error`, and stopped, when it cannot.
    virtual bool start(const Selection& selection, const QString& sourceId, QString& error) = 0;

    // Releases every platform object; harmless when nothing runs.
    virtual void stop() = 0;

Q_SIGNALS:
    // Emitted on the platform's audio thread: connect with a context object that lives on another
    // thread, so that the block is queued and no handler runs on the audio thread.
    void block(const qn::AudioBlock&);

    // The capture broke down after a successful start; a message for the user. May come on the
    // owner's thread or on one of the platform's: connect as for block.
    void failed(const QString&);
};

// The platform's backend, without a parent, stopped. Defined by the platform's folder alone.
std::unique_ptr<CaptureBackend> makeCaptureBackend();

} // namespace qn
