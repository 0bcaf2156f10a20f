#pragma once

#import <Foundation/Foundation.h>

enum : NSInteger { NSApplicationActivationPolicyRegular = 0 };

// clang-format off
@interface NSRunningApplication : NSObject { NSInteger policy, pid; NSString *identifier, *name; }
@property(assign) NSInteger activationPolicy, processIdentifier;
@property(assign) NSString *bundleIdentifier, *localizedName;
@end

@interface NSWorkspace : NSObject
+ (NSWorkspace*)sharedWorkspace;
- (NSArray*)runningApplications;
@end
