#include "capture/macos/output_devices.h"

#include "capture/macos/audio_object.h"

namespace qn {

void listOutputDevices(Catalog& catalog) {
    AudioObjectID defaultDevice = kAudioObjectUnknown;
    if (!readProperty(kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice,
                      &defaultDevice, sizeof defaultDevice))
        defaultDevice = kAudioObjectUnknown;
    const QList<AudioObjectID> devices = objectList(
        kAudioObjectSystemObject, kAudioHardwarePropertyDevices, kAudioObjectPropertyScopeGlobal);
    for (const AudioObjectID device : devices) {
        if (objectList(device, kAudioDevicePropertyStreams, kAudioObjectPropertyScopeOutput)
                .isEmpty())
            continue;
        const QString uid = readString(device, kAudioDevicePropertyDeviceUID).text();
        if (uid.isEmpty())
            continue;
        catalog.outputs.append({uid, readString(device, kAudioObjectPropertyName).text()});
        if (device == defaultDevice)
            catalog.defaultOutput = uid;
    }
}

} // namespace qn
