#pragma once

#import <Foundation/Foundation.h>

#include <QString>

namespace qn {

// Both copy UTF-16 units, so that no text is changed. The NSString is autoreleased; nil becomes a
// null QString.
NSString* toNative(const QString& text);
QString fromNative(NSString* text);

} // namespace qn
