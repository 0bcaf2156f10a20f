#pragma once

#include "capture/catalog.h"

#include <pulse/channelmap.h>
#include <pulse/proplist.h>
#include <pulse/sample.h>

#include <QHash>
#include <QList>

namespace qn {

// What a client or stream announces about its program; any of it may be missing or false.
struct ProgramFacts {
    QString portalId; // of a sandboxed program
    QString binary;
    QString applicationId;
    QString name;
    QString processId;
};

ProgramFacts programFacts(const pa_proplist* properties);

// A sink or a source that can be recorded: its spec is valid and fits its map.
struct DeviceFacts {
    quint32 index = 0; // new whenever the device comes back
    QString name;      // stays the same
    QString description;
    QByteArray source; // what to record: a sink's monitor or the source itself
    pa_sample_spec spec{};
    pa_channel_map map{};
    bool isMonitor = false; // a source that repeats what a sink plays
};

// A stream that some program plays.
struct InputFacts {
    quint32 index = 0;
    quint32 sink = 0;   // PA_INVALID_INDEX while it moves
    quint32 client = 0; // PA_INVALID_INDEX for a stream of the server itself
    ProgramFacts program;
};

// The server's lists at one moment, in its order.
struct ServerSnapshot {
    QString defaultSink;
    QString defaultSource;
    QList<DeviceFacts> sinks;
    QList<DeviceFacts> sources;
    QHash<quint32, ProgramFacts> clients;
    QList<InputFacts> inputs;
};

// Null when there is no such device.
const DeviceFacts* findDevice(const QList<DeviceFacts>& devices, const QString& name);
const DeviceFacts* findDevice(const QList<DeviceFacts>& devices, quint32 index);

} // namespace qn
