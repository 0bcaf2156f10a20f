#pragma once

#include <QSqlQuery>
#include <QVariant>

namespace qn::testing {

using namespace Qt::StringLiterals;

// The test's own look into a library file: the first column of what a statement gives.
inline QString query(const QString& file, const QString& sql) {
    QStringList values;
    {
        auto db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"look"_s);
        db.setDatabaseName(file);
        db.open();
        QSqlQuery select(sql, db);
        while (select.next())
            values += select.value(0).toString();
    }
    QSqlDatabase::removeDatabase(u"look"_s);
    return values.join(u',');
}

} // namespace qn::testing
