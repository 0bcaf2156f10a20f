#include "engine/tools.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace qn {

using namespace Qt::StringLiterals;

QString toolPath(const QString& name) {
    const QByteArray variable = "QUORLIN_" + name.toUpper().toUtf8();
    if (const QString named = qEnvironmentVariable(variable.constData()); !named.isEmpty())
        return named;
    const QDir programFolder(QCoreApplication::applicationDirPath());
    for (const QString& folder : {u"tools/"_s, u"../Resources/tools/"_s}) {
        const QString path = programFolder.filePath(folder + name);
        if (QFileInfo(path).isExecutable())
            return path;
    }
    return QStandardPaths::findExecutable(name);
}

QString ffmpegPath() {
    return toolPath(u"ffmpeg"_s);
}

QString ffprobePath() {
    return toolPath(u"ffprobe"_s);
}

} // namespace qn
