#pragma once

#include "capture/macos/audio_object.h"

#import <CoreAudio/AudioHardwareTapping.h>
#import <CoreAudio/CATapDescription.h>

#include <QSet>

namespace qn {

using OwnedTap = OwnedObject<AudioHardwareDestroyProcessTap>;

// Both describe private taps, named "Quorlin", whose sound stays audible. Autoreleased.

// Everything that every process plays on the device's first output stream.
CATapDescription* describeDeviceTap(const QString& deviceUid);

// A stereo mix of the processes; silent without any.
CATapDescription* describeProcessTap(const QSet<AudioObjectID>& processes);

} // namespace qn
