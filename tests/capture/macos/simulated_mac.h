#pragma once

#include <CoreAudio/CoreAudio.h>

#include <QHash>
#include <QJsonObject>
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

    // Knobs. A property is bytes or a string, which may be null; those of object 0 are every tap's.
    QMap<std::pair<AudioObjectID, QString>, std::variant<QByteArray, QString>> properties;
    QList<Application> applications;
    QHash<QString, OSStatus> refusals; // by function or property selector
    bool listsShrink = false;          // by one entry when their size has been read

    // Observations
    QStringList calls, faults;      // functions; property reads by their selector
    QJsonObject tap, aggregate;     // the last descriptions
    QMap<AudioObjectID, char> live; // 't'ap, 'a'ggregate device
    QSet<const void*> strings;      // handed out and not released
    int tapDescriptions = 0;
    AudioObjectID lastId = 1000, ioDevice = 0;
    AudioDeviceIOProc ioProcedure = nullptr; // at most one
    void* ioClientData = nullptr;
    bool startCalled = false, running = false;

    bool isClean() const; // no fault, and everything was released
};

SimulatedMac& mac();

// Lets the IO thread run one cycle, without a buffer list if there is no buffer; false when the
// device does not run.
bool deliver(const QList<SimulatedMac::Buffer>& buffers, const AudioTimeStamp* inputTime = nullptr);
