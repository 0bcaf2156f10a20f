#pragma once

#include <CoreAudio/CoreAudio.h>

#include <QElapsedTimer>
#include <QList>
#include <QLoggingCategory>
#include <QString>

#include <type_traits>
#include <utility>

namespace qn {

// "quorlin.coreaudio": how long each call took that opens or closes something, and its status.
Q_DECLARE_LOGGING_CATEGORY(coreAudioLog)

template <typename... Args>
OSStatus logged(const char* name, OSStatus (*function)(Args...),
                std::type_identity_t<Args>... arguments) {
    QElapsedTimer clock;
    clock.start();
    const OSStatus status = function(arguments...);
    qCDebug(coreAudioLog, "%s: %lld ms, status %d", name, static_cast<long long>(clock.elapsed()),
            static_cast<int>(status));
    return status;
}

// Owns a string that the platform handed out; may hold none.
class OwnedString {
public:
    explicit OwnedString(CFStringRef string) : string(string) {}
    ~OwnedString() { release(); }
    Q_DISABLE_COPY_MOVE(OwnedString)

    explicit operator bool() const { return string != nullptr; }
    CFStringRef get() const { return string; }
    QString text() const;
    void release();

private:
    CFStringRef string;
};

// Owns a platform object that `Destroy` ends; kAudioObjectUnknown is none.
template <auto Destroy> class OwnedObject {
public:
    OwnedObject() = default;
    ~OwnedObject() { destroy(); }
    Q_DISABLE_COPY_MOVE(OwnedObject)

    AudioObjectID get() const { return object; }

    // Where the platform writes the id of the object it creates for us.
    AudioObjectID* receive() {
        destroy();
        return &object;
    }

    void destroy() {
        if (object != kAudioObjectUnknown)
            logged("destroying", Destroy, std::exchange(object, kAudioObjectUnknown));
    }

    // Leaves the object to the platform.
    void abandon() { object = kAudioObjectUnknown; }

private:
    AudioObjectID object = kAudioObjectUnknown;
};

// Reads one fixed-size property of the main element into `value`; false when it is not available.
bool readProperty(AudioObjectID object, AudioObjectPropertySelector selector, void* value,
                  UInt32 size);

// A string property in the global scope; holds none when it is not available.
OwnedString readString(AudioObjectID object, AudioObjectPropertySelector selector);

// An array property; empty when it is not available.
QList<AudioObjectID> objectList(AudioObjectID object, AudioObjectPropertySelector selector,
                                AudioObjectPropertyScope scope);

} // namespace qn
