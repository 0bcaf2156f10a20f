#pragma once

#include <QtTest>

namespace qn::testing {

using namespace Qt::StringLiterals;

inline QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void write(const QString& path, const QByteArray& data) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(data) == data.size());
}

// Has the product run that shell script, "tool" in the working directory, as its ffmpeg; an empty
// one means that there is none.
inline void useTool(const QByteArray& script) {
    write(u"tool"_s, "#!/bin/sh\n" + script);
    QFile::setPermissions(u"tool"_s, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("QUORLIN_FFMPEG", script.isEmpty() ? "/nonexistent" : "./tool");
}

// The samples of an audio file.
inline QList<float> decoded(const QString& path) {
    QProcess ffmpeg;
    ffmpeg.start(u"ffmpeg"_s, {u"-i"_s, path, u"-f"_s, u"f32le"_s, u"-"_s});
    ffmpeg.waitForFinished();
    QList<float> samples(ffmpeg.bytesAvailable() / 4);
    ffmpeg.read(reinterpret_cast<char*>(samples.data()), samples.size() * 4);
    return samples;
}

} // namespace qn::testing
