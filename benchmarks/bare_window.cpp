// bare_window FOLDER: the smallest window that a library of recordings needs, with a table, a media
// player and an open SQLite file.

#include <QApplication>
#include <QAudioOutput>
#include <QDir>
#include <QMainWindow>
#include <QMediaPlayer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTableWidget>

using namespace Qt::StringLiterals;

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QDir folder(QCoreApplication::arguments().value(1));
    QDir().mkpath(folder.path());
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s);
    database.setDatabaseName(folder.filePath(u"bare.sqlite3"_s));
    database.open();
    QSqlQuery(database).exec(u"CREATE TABLE IF NOT EXISTS recordings (id TEXT PRIMARY KEY)"_s);
    QMediaPlayer player;
    QAudioOutput output;
    player.setAudioOutput(&output);
    QMainWindow window;
    window.setCentralWidget(new QTableWidget(20, 6));
    window.resize(1140, 850);
    window.show();
    return QCoreApplication::exec();
}
