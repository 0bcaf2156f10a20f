#include "capture/macos/aggregate_device.h"

namespace qn {

NSDictionary* describeAggregateDevice(CFStringRef tapUid) {
    NSNumber* yes = [NSNumber numberWithBool:YES];
    NSDictionary* tap = @{@"uid" : reinterpret_cast<NSString*>(tapUid), @"drift" : yes};
    return @{
        @"name" : @"Quorlin Capture",
        @"uid" : [[NSUUID UUID] UUIDString],
        @"private" : yes,
        @"tapautostart" : yes,
        @"taps" : @[ tap ],
    };
}

} // namespace qn
