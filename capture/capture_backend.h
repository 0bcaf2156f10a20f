#pragma once

#include "capture/catalog.h"
#include "core/audio_block.h"

#include <QObject>
#include <QString>

#include <memory>

namespace qn {

// Captures what the computer plays, one source at a time. Lives on its owner's thread, where
// catalog, start and stop are called. Every user owns a backend of its own.
class CaptureBackend : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Lists the sources there are now, without disturbing a capture in progress.
    virtual Catalog catalog() const = 0;

    // Stops any capture, then captures `sourceId` (from resolveSource) as `selection.kind` says. On
    // failure it returns false with a message for the user in `error`, and nothing is captured.
    virtual bool start(const Selection& selection, const QString& sourceId, QString& error) = 0;

    // Releases every platform object; harmless if nothing is captured.
    virtual void stop() = 0;

Q_SIGNALS:
    // Emitted on the platform's audio thread. Connect with a context object on another thread, so
    // that no handler runs on the audio thread.
    void block(const qn::AudioBlock&);

    // The capture failed after a successful start; a message for the user. Emitted on the owner's
    // thread or one of the platform's; connect as for block.
    void failed(const QString&);
};

// A new backend of this platform, stopped and without a parent. Defined in the platform's folder.
std::unique_ptr<CaptureBackend> makeCaptureBackend();

} // namespace qn
