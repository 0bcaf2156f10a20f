// A transcoding export compared with plain ffmpeg with the same arguments, copy and fsync; a
// copying export compared with copy and fsync. Usage: export_benchmark [minutes of audio, default
// 10]
#include "benchmarks/sample_recordings.h"
#include "benchmarks/side_by_side.h"
#include "export/export_job.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include <vector>

namespace {

using namespace Qt::StringLiterals;
using qn::AudioFormat;

void exportTo(const QString& source, AudioFormat from, AudioFormat to, const QString& target) {
    qn::Recording recording;
    recording.path = source;
    recording.format = qn::toText(from);
    recording.status = u"ready"_s;
    recording.started = QDateTime::currentDateTimeUtc();
    recording.durationMs = 60000;
    qn::ExportJob job;
    QEventLoop loop;
    QObject::connect(&job, &qn::ExportJob::finished, &loop, [&](bool success) {
        if (!success)
            std::exit(1);
        loop.quit();
    });
    job.start(recording, target, to);
    loop.exec();
}

void copyAndSync(const QString& source, const QString& target) {
    const QString partial = target + u".partial"_s;
    const int in = open(qPrintable(source), O_RDONLY | O_CLOEXEC);
    const int out = open(qPrintable(partial), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    std::vector<char> buffer(1 << 20);
    for (ssize_t bytes = 1; bytes > 0;) {
        bytes = read(in, buffer.data(), buffer.size());
        if (bytes < 0 || write(out, buffer.data(), size_t(bytes)) != bytes)
            std::exit(1);
    }
    fsync(out);
    close(in);
    close(out);
    std::rename(qPrintable(partial), qPrintable(target));
}

void plainTranscode(const QString& source, AudioFormat to, const QString& target) {
    const QString transcoded = target + u".transcoded"_s;
    sample_recordings::ffmpeg(
        QStringList{u"-i"_s, source, u"-vn"_s, u"-ar"_s, u"48000"_s, u"-ac"_s, u"1"_s} +
            qn::codecArguments(to)
        << transcoded);
    copyAndSync(transcoded, target);
    QFile::remove(transcoded);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int minutes = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
    const QTemporaryDir folder;
    sample_recordings::make(folder.path(), minutes);
    const QString target = folder.filePath(u"target"_s);

    std::printf("Export of %d min of audio: ffmpeg, copy and fsync beside it\n", minutes);
    side_by_side::printHeader();
    for (const AudioFormat to : {AudioFormat::Opus, AudioFormat::Mp3, AudioFormat::Wav}) {
        const AudioFormat from = to == AudioFormat::Wav ? AudioFormat::Opus : AudioFormat::Wav;
        const QString source = sample_recordings::path(folder.path(), from);
        side_by_side::compare(
            "transcode to " + qn::toText(to).toStdString(), 3, 1.03,
            [&] { exportTo(source, from, to, target); },
            [&] { plainTranscode(source, to, target); });
    }
    for (const AudioFormat format : {AudioFormat::Opus, AudioFormat::Wav}) {
        const QString source = sample_recordings::path(folder.path(), format);
        side_by_side::compare(
            "copy " + qn::toText(format).toStdString(), 15, 1.2,
            [&] { exportTo(source, format, format, target); },
            [&] { copyAndSync(source, target); });
    }
    return 0;
}
