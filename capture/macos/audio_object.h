#pragma once

#include <CoreAudio/CoreAudio.h>

#include <QList>
#include <QString>

#include <utility>

namespace qn {

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
            Destroy(std::exchange(object, kAudioObjectUnknown));
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
