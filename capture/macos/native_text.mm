#include "capture/macos/native_text.h"

namespace qn {

NSString* toNative(const QString& text) {
    return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.utf16())
                                   length:static_cast<NSUInteger>(text.size())];
}

QString fromNative(NSString* text) {
    if (text == nil)
        return {};
    const NSUInteger length = [text length];
    QString result(static_cast<qsizetype>(length), Qt::Uninitialized);
    [text getCharacters:reinterpret_cast<unichar*>(result.data()) range:NSMakeRange(0, length)];
    return result;
}

} // namespace qn
