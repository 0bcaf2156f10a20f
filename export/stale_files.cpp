#include "export/stale_files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <unistd.h>

#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kLeastAgeSeconds = 3600;

// Files open in the processes that this one may inspect; none without /proc, where only the file's
// age counts.
QSet<QString> openFiles() {
    QSet<QString> paths;
    const QStringList processes = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString& process : processes) {
        const QFileInfoList links = QDir(u"/proc/"_s + process + u"/fd"_s)
                                        .entryInfoList(QDir::Files | QDir::System | QDir::Hidden);
        for (const QFileInfo& link : links)
            paths.insert(link.symLinkTarget());
    }
    return paths;
}

bool isOld(const QFileInfo& file) {
    static const QRegularExpression name(u"^\\.quorlin-export-[A-Za-z]{6}$"_s);
    return name.match(file.fileName()).hasMatch() && file.isFile() && !file.isSymLink() &&
           file.ownerId() == getuid() &&
           file.lastModified().secsTo(QDateTime::currentDateTime()) > kLeastAgeSeconds;
}

} // namespace

QString temporaryFileTemplate(const QString& folder) {
    return QDir(folder).filePath(u".quorlin-export-XXXXXX"_s);
}

void removeStaleFiles(const QString& folder) {
    QFileInfoList files = QDir(folder).entryInfoList({u".quorlin-export-*"_s},
                                                     QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    files.removeIf([](const QFileInfo& file) { return !isOld(file); });
    if (files.isEmpty())
        return;
    const QSet<QString> open = openFiles();
    for (const QFileInfo& file : std::as_const(files)) {
        if (!open.contains(file.canonicalFilePath()))
            QFile::remove(file.filePath());
    }
}

} // namespace qn
