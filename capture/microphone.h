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
    QString name;  // for people
};

// What can be recorded right now, in the platform's order.
struct MicrophoneList {
    QList<MicrophoneEntry> entries;
    QByteArray defaultId; // of an entry, or empty
};

// The entry with the id `chosen` while it is connected, the default one otherwise; null when there
// is neither.
const MicrophoneEntry* resolveMicrophone(const QByteArray& chosen, const MicrophoneList& list);

// Captures one microphone. Lives on its owner's thread, where list, start and stop are called; each
// of them returns within a second.
class MicrophoneBackend : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Enumerates the microphones now, without disturbing a capture in progress.
    virtual MicrophoneList list() const = 0;

    // Stops whatever runs, then captures the microphone `id`. False with a message for the user in
    // `error`, and stopped, when it cannot.
    virtual bool start(const QByteArray& id, QString& error) = 0;

    // Emits what is held back as a last block, then releases the microphone; harmless when nothing
    // runs.
    virtual void stop() = 0;

Q_SIGNALS:
    // May come on a thread of the platform's: connect with a context object.
    void block(const qn::AudioBlock&);

    // The capture broke down after a successful start; a message for the user. As block.
    void failed(const QString&);
};

// The platform's microphones, without a parent, stopped. Defined by the platform's folder alone.
std::unique_ptr<MicrophoneBackend> makeMicrophoneBackend();

} // namespace qn
