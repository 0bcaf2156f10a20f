#pragma once

#include "core/audio_block.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

#include <memory>

namespace qn {

struct MicrophoneEntry {
    QByteArray id; // stable over restarts, never empty
    QString name;  // shown to the user
};

// What can be recorded right now, in the platform's order.
struct MicrophoneList {
    QList<MicrophoneEntry> entries;
    QByteArray defaultId; // of an entry, or empty
};

// The entry with the id `chosen`, else the default one; null if neither is connected.
const MicrophoneEntry* resolveMicrophone(const QByteArray& chosen, const MicrophoneList& list);

// Captures one microphone. Lives on its owner's thread, where list, start and stop are called; each
// of them returns within a second.
class MicrophoneBackend : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Lists the microphones there are now, without disturbing a capture in progress.
    virtual MicrophoneList list() const = 0;

    // Stops any capture, then captures the microphone `id`. On failure it returns false with a
    // message for the user in `error`, and nothing is captured.
    virtual bool start(const QByteArray& id, QString& error) = 0;

    // Emits the samples still held back as last blocks, then releases the microphone; harmless if
    // nothing is captured.
    virtual void stop() = 0;

Q_SIGNALS:
    // May be emitted on a thread of the platform; connect with a context object.
    void block(const qn::AudioBlock&);

    // The capture failed after a successful start; a message for the user. Connect as for block.
    void failed(const QString&);
};

// A new backend of this platform, stopped and without a parent. Defined in the platform's folder.
std::unique_ptr<MicrophoneBackend> makeMicrophoneBackend();

} // namespace qn
