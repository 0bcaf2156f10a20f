#pragma once

#include "capture/macos/audio_object.h"

#import <Foundation/Foundation.h>

namespace qn {

using OwnedAggregate = OwnedObject<AudioHardwareDestroyAggregateDevice>;

// A private device with a new UID that holds only the tap, with drift compensation: no sub-device
// and no main device. Autoreleased.
NSDictionary* describeAggregateDevice(CFStringRef tapUid);

} // namespace qn
