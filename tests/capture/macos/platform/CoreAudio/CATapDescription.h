#pragma once

#import <Foundation/Foundation.h>

// clang-format off
@interface CATapDescription : NSObject { @public NSMutableDictionary* facts; }
- (instancetype)initExcludingProcesses:(NSArray*)excluded andDeviceUID:(NSString*)uid withStream:(NSInteger)index;
- (instancetype)initStereoMixdownOfProcesses:(NSArray*)included;
- (void)setName:(NSString*)text;
- (void)setPrivate:(BOOL)flag;
@end
