#pragma once

#include <CoreAudio/CoreAudio.h>

#include <QHash>
#include <QMap>
#include <QSet>
#include <QStringList>

#include <optional>
#include <variant>

// The platform under the backend, as strict as the real one: what that would punish is a fault.
struct SimulatedMac {
    struct Application {
        QString bundleId, name;  // null: none
        int policy = 0, pid = 1; // pid 0: this process
    };
    struct Buffer {
        UInt32 channels;
        QByteArray bytes;                    // null: no data pointer
        std::optional<UInt32> byteSize = {}; // claimed, if not that of `bytes`
    };

    // Knobs. A property is bytes or a string, which may be null; those of object 0 are every tap's,
    // and those of object 2, if any, are what a tap has while it runs.
    QMap<std::pair<AudioObjectID, QString>, std::variant<QByteArray, QString>> properties;
    QList<Application> applications;
    QHash<QString, OSStatus> refusals; // by function or property selector

    // Observations
    QStringList calls, faults;      // functions; property reads by their selector
    QString tap, aggregate;         // the last descriptions, as JSON with single quotes
    QMap<AudioObjectID, char> live; // 't'ap, 'a'ggregate device
    QSet<const void*> unreleased;   // strings handed out, tap descriptions
    AudioObjectID lastId = 1000, ioDevice = 0;
    AudioDeviceIOProc ioProcedure = nullptr; // at most one
    void* ioClientData = nullptr;
    bool running = false;

    bool isClean() const; // no fault, and everything was released
};

inline SimulatedMac mac;

// Lets the IO thread run one cycle if the device runs, without a buffer list if there is no buffer.
void deliver(const QList<SimulatedMac::Buffer>& buffers, const AudioTimeStamp* inputTime = nullptr);
