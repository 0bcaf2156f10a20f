#include "capture/macos/audio_object.h"

#include "capture/macos/native_text.h"

namespace qn {

Q_LOGGING_CATEGORY(coreAudioLog, "quorlin.coreaudio", QtInfoMsg)

QString OwnedString::text() const {
    return fromNative(reinterpret_cast<NSString*>(string));
}

void OwnedString::release() {
    if (string != nullptr)
        CFRelease(std::exchange(string, nullptr));
}

bool readProperty(AudioObjectID object, AudioObjectPropertySelector selector, void* value,
                  UInt32 size) {
    const AudioObjectPropertyAddress address = {selector, kAudioObjectPropertyScopeGlobal,
                                                kAudioObjectPropertyElementMain};
    return AudioObjectGetPropertyData(object, &address, 0, nullptr, &size, value) == noErr;
}

OwnedString readString(AudioObjectID object, AudioObjectPropertySelector selector) {
    CFStringRef string = nullptr;
    const bool available = readProperty(object, selector, &string, sizeof(CFStringRef));
    return OwnedString(available ? string : nullptr);
}

QList<AudioObjectID> objectList(AudioObjectID object, AudioObjectPropertySelector selector,
                                AudioObjectPropertyScope scope) {
    const AudioObjectPropertyAddress address = {selector, scope, kAudioObjectPropertyElementMain};
    UInt32 size = 0;
    if (AudioObjectGetPropertyDataSize(object, &address, 0, nullptr, &size) != noErr)
        return {};
    QList<AudioObjectID> objects(size / sizeof(AudioObjectID), kAudioObjectUnknown);
    size = static_cast<UInt32>(static_cast<size_t>(objects.size()) * sizeof(AudioObjectID));
    if (AudioObjectGetPropertyData(object, &address, 0, nullptr, &size, objects.data()) != noErr)
        return {};
    return objects;
}

} // namespace qn
