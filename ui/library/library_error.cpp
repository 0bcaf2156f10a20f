#include "ui/library/library_error.h"

#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

// SQLite's English messages; see sqlite3_errstr.
QString plainReason(const QString& driverText) {
    static const std::pair<QString, QString> reasons[] = {
        {u"database is locked"_s, u"файл занят другой программой"_s},
        {u"readonly"_s, u"файл доступен только для чтения"_s},
        {u"is full"_s, u"на диске нет места"_s},
        {u"malformed"_s, u"файл повреждён"_s},
        {u"not a database"_s, u"файл повреждён"_s},
        {u"disk I/O error"_s, u"диск не отвечает"_s},
        {u"unable to open"_s, u"файл не открывается"_s},
    };
    for (const auto& [words, reason] : reasons) {
        if (driverText.contains(words))
            return reason;
    }
    return u"неизвестная причина"_s;
}

} // namespace qn
