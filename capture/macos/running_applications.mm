#include "capture/macos/running_applications.h"

#include "capture/macos/native_text.h"

#import <AppKit/AppKit.h>

namespace qn {

QList<SourceEntry> listRunningApplications() {
    QList<SourceEntry> entries;
    const auto ownProcess = [[NSProcessInfo processInfo] processIdentifier];
    for (NSRunningApplication* application in [[NSWorkspace sharedWorkspace] runningApplications]) {
        if ([application activationPolicy] != NSApplicationActivationPolicyRegular ||
            [application processIdentifier] == ownProcess)
            continue;
        NSString* identifier = [application bundleIdentifier];
        if ([identifier length] == 0) // command-line tools have none, and an id is never empty
            continue;
        NSString* name = [application localizedName];
        entries.append({fromNative(identifier), fromNative(name != nil ? name : identifier)});
    }
    return entries;
}

} // namespace qn
