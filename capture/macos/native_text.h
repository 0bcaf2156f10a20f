#pragma once

#import <Foundation/Foundation.h>

#include <QString>

namespace qn {

// Both by UTF-16, so that any text survives. The NSString is autoreleased; nil is a null QString.
NSString* toNative(const QString& text);
QString fromNative(NSString* text);

} // namespace qn
