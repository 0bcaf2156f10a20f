#pragma once

#include "capture/macos/audio_object.h"

#import <Foundation/Foundation.h>

namespace qn {

using OwnedAggregate = OwnedObject<AudioHardwareDestroyAggregateDevice>;

// A private device, under a UID never used before, that consists of the tap alone with drift
// compensation on: no sub-device and no main device. Autoreleased.
NSDictionary* describeAggregateDevice(CFStringRef tapUid);

} // namespace qn
