#pragma once

#include <CoreAudio/CoreAudio.h>

#include <QElapsedTimer>
#include <QList>
#include <QLoggingCategory>
#include <QString>

#include <type_traits>
#include <utility>

namespace qn {

// "quorlin.coreaudio": duration and status of each call that opens or closes something.
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

// Owns a string from the platform, or none.
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

// Owns a platform object and destroys it with `Destroy`; kAudioObjectUnknown stands for none.
template <auto Destroy> class OwnedObject {
public:
    OwnedObject() = default;
    ~OwnedObject() { destroy(); }
    Q_DISABLE_COPY_MOVE(OwnedObject)

    AudioObjectID get() const { return object; }

    // Where the platform writes the id of the object that it creates; destroys the one held before.
    AudioObjectID* receive() {
        destroy();
        return &object;
    }

    void destroy() {
        if (object != kAudioObjectUnknown)
            logged("destroying", Destroy, std::exchange(object, kAudioObjectUnknown));
    }

    // Gives up ownership; the object stays with the platform.
    void abandon() { object = kAudioObjectUnknown; }

private:
    AudioObjectID object = kAudioObjectUnknown;
};

// Reads a property of `size` bytes of the main element in the global scope into `value`; false if
// it is not available.
bool readProperty(AudioObjectID object, AudioObjectPropertySelector selector, void* value,
                  UInt32 size);

// A string property in the global scope; none if it is not available.
OwnedString readString(AudioObjectID object, AudioObjectPropertySelector selector);

// A property that lists objects; empty if it is not available.
QList<AudioObjectID> objectList(AudioObjectID object, AudioObjectPropertySelector selector,
                                AudioObjectPropertyScope scope);

} // namespace qn
