#include "core/text.h"

#include <QRegularExpression>

#include <algorithm>

namespace qn {

using namespace Qt::StringLiterals;

namespace {
constexpr qsizetype kLongestName = 120;
}

QString formatDuration(qint64 ms) {
    const qint64 seconds = std::max<qint64>(ms / 1000, 0);
    return u"%1:%2:%3"_s.arg(seconds / 3600, 2, 10, QLatin1Char('0'))
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString safeFileName(QString name) {
    static const QRegularExpression unsafe(u"[\\x00-\\x1f<>:\"/\\\\|?*]"_s);
    name = name.replace(unsafe, u"_"_s).trimmed().left(kLongestName);
    while (name.endsWith(u'.') || name.endsWith(u' '))
        name.chop(1);
    return name.isEmpty() ? u"Созвон"_s : name;
}

} // namespace qn
