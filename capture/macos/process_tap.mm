#include "capture/macos/process_tap.h"

#include "capture/macos/native_text.h"

namespace qn {

namespace {

CATapDescription* namedPrivately(CATapDescription* description) {
    [description setName:@"Quorlin"];
    [description setPrivate:YES];
    return [description autorelease];
}

} // namespace

CATapDescription* describeDeviceTap(const QString& deviceUid) {
    return namedPrivately([[CATapDescription alloc] initExcludingProcesses:[NSArray array]
                                                              andDeviceUID:toNative(deviceUid)
                                                                withStream:0]);
}

CATapDescription* describeProcessTap(const QSet<AudioObjectID>& processes) {
    NSMutableArray* numbers = [NSMutableArray array];
    for (const AudioObjectID process : processes)
        [numbers addObject:[NSNumber numberWithUnsignedInt:process]];
    return namedPrivately([[CATapDescription alloc] initStereoMixdownOfProcesses:numbers]);
}

} // namespace qn
