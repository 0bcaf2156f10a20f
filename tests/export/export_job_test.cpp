#include "engine/codec_arguments.h"
#include "engine/tools.h"
#include "export/export_job.h"
#include "tests/support/files.h"
#include "tests/support/tone.h"

#include <sys/resource.h>

#include <algorithm>
#include <csignal>

using namespace qn;
using namespace qn::testing;

class ExportJobTest : public QObject {
    Q_OBJECT

    const QList<AudioFormat> formats{AudioFormat::Opus, AudioFormat::Mp3, AudioFormat::Wav};
    const QTemporaryDir folder;
    const QString title = u"-y \"%1\"; 'x'\n\\ = Привет"_s;
    std::unique_ptr<ExportJob> job = std::make_unique<ExportJob>(); // used again and again
    QList<int> percents;
    QStringList messages;

    void start(const QString& path, AudioFormat format, const QString& target = u"target"_s) {
        percents.clear();
        messages.clear();
        const QString status = path.contains(u"cut") ? u"interrupted"_s : u"ready"_s;
        const auto started = QDateTime::fromMSecsSinceEpoch(1714557600123, Qt::UTC);
        job->start({{}, title, path, path.section(u'.', -1), {}, status, started, {}, 3000, {}},
                   target, format);
    }

private Q_SLOTS:
    void initTestCase() {
        QDir::setCurrent(folder.path());
        connect(job.get(), &ExportJob::progress, this, [this](int now) { percents += now; });
        connect(job.get(), &ExportJob::finished, this,
                [this](bool, const QString& message) { messages += message; });
        for (const AudioFormat format : formats)
            QProcess::execute(ffmpegPath(), u"-v error -f lavfi -i sine=d=3:r=48000"_s.split(u' ') +
                                                codecArguments(format) +
                                                QStringList(u"cut."_s + toText(format)));
        const QByteArray wav = contents(u"cut.wav"_s); // a killed ffmpeg leaves a wrong length
        write(u"cut.wav"_s, QByteArray(wav).replace(wav.indexOf("data") + 4, 3, "\1\1\1"));
        write(u"big.mp3"_s, QByteArray(3 << 20, 'x'));
        QVERIFY(QFile::link(u"big.mp3"_s, u"link.mp3"_s));
    }

    void init() { write(u"target"_s, "old"); }

    void cleanup() {
        const auto all = QDir::Files | QDir::Hidden | QDir::System;
        QCOMPARE(QDir(folder.path()).entryList({u".*"_s, u"target?*"_s}, all), QStringList());
    }

    void whatAKilledExportLeftGoesWithTheNext() {
        const QString stem = u".quorlin-export-"_s;
        const QString kept[] = {stem + u"opened"_s, stem + u"recent"_s, stem + u"a.txt"_s};
        for (const QString& name : {stem + u"oldest"_s, kept[0], kept[1], kept[2]})
            write(name, "x");
        QFile opened(kept[0]);
        QVERIFY(opened.open(QIODevice::ReadOnly));
        for (const QString& name : {stem + u"oldest"_s, kept[0], kept[2]}) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(QDateTime::currentDateTime().addSecs(-4000),
                                     QFileDevice::FileModificationTime));
        }
        start(u"cut.opus"_s, AudioFormat::Mp3);
        QTRY_COMPARE(messages.size(), 1);
        QVERIFY(!QFile::exists(stem + u"oldest"_s));
        for (const QString& name : kept)
            QVERIFY2(QFile::remove(name), qPrintable(name)); // was there
    }

    void everyRecordingBecomesEveryFormat() {
        for (const AudioFormat from : formats) {
            for (const AudioFormat to : formats) {
                start(u"cut."_s + toText(from), to);
                QTRY_COMPARE(messages, QStringList(u"Аудио экспортировано"_s));
                QVERIFY(std::is_sorted(percents.begin(), percents.end()) && percents.last() == 100);
                QVERIFY(contents(u"target"_s).contains(title.toUtf8()));
                const QList<float> samples = decoded(u"target"_s);
                const Tone tone = findTone(samples, 48000);
                QVERIFY(samples.size() == 144000 && tone.silence < 4800); // 3 s of the tone
                QVERIFY(qAbs(tone.hertz - 440) < 5);
            }
        }
    }

    void theToolIsAskedAndHeard() {
        useTool("printf '%s\\n' \"$@\" >$0.arguments; printf 'out_time_us=%s\\n' "
                "N/A -3000000 -9223372036854775807 >&2; printf out_time_us=15 >&2; sleep 0.2\n"
                "printf '00000\\nout_time_us=9223372036854775807\\n' >&2");
        start(u"concat:cut.wav"_s, AudioFormat::Mp3);
        QTRY_COMPARE(percents, (QList{0, -90, std::numeric_limits<int>::min(), 45, 90, 100, 100}));
        const QByteArray arguments = contents(u"tool.arguments"_s);
        QVERIFY(arguments.contains("-y\n-ignore_length\n1\n-i\nfile:concat:cut.wav\n-vn\n"));
        QVERIFY(arguments.contains("\ncreation_time=2024-05-01T10:00:00.123Z\n"));
    }

    void aFailureLeavesTheOldTarget() {
        const std::tuple<QByteArray, QString, QString, QString> rows[] = {
            {"yes | head -c 3000000 >&2; exit 3", u"cut.wav"_s, u"target"_s,
             u"Не удалось преобразовать аудио: "_s + u"y\n"_s.repeated(1500)},
            {"", u"cut.wav"_s, u"target"_s, u"No such file or directory"_s},
            {"", u"missing.mp3"_s, u"target"_s, u"No such file or directory"_s},
            {"", u"big.mp3"_s, u"target"_s, u"Ошибка копирования аудио"_s},
            {"", u"link.mp3"_s, u"big.mp3"_s, u"Нельзя заменить исходную запись экспортом"_s},
            {"", u"big.mp3"_s, u"missing/target"_s, u"No such file or directory"_s}};
        const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
        const rlimit fullDisk{2 << 20, RLIM_INFINITY};
        std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &fullDisk);
        for (const auto& [tool, source, target, message] : rows) {
            useTool(tool);
            start(source, AudioFormat::Mp3, target);
            QTRY_COMPARE(messages.size(), 1);
            QVERIFY2(messages[0].endsWith(message), qPrintable(messages[0]));
            QCOMPARE(percents.isEmpty(), target != "target"_L1);
            QCOMPARE(contents(u"target"_s), "old");
        }
        setrlimit(RLIMIT_FSIZE, &unlimited);
    }

    void anExportEndsWhenCancelledCopiedOrDestroyed() {
        useTool("for out; do :; done; while :; do echo out_time_us=1 >&2; : > $out; done");
        for (const QString& name : {u"cut.wav"_s, u"big.mp3"_s}) {
            const QObject context;
            connect(job.get(), &ExportJob::progress, &context, [&] {
                if (job->isRunning())
                    start(name, AudioFormat::Wav, u"target2"_s); // ignored
                job->cancel();
            });
            start(name, AudioFormat::Mp3);
            QTRY_COMPARE(messages, QStringList(u"Экспорт отменён"_s));
            QCOMPARE(contents(u"target"_s), "old");
        }
        start(u"big.mp3"_s, AudioFormat::Mp3);
        QTRY_COMPARE(percents, (QList{33, 66, 100, 100}));
        QCOMPARE(contents(u"target"_s), contents(u"big.mp3"_s));
        start(u"cut.wav"_s, AudioFormat::Mp3);
        QTRY_VERIFY(!percents.isEmpty());
        job.reset();
        QCOMPARE(messages, QStringList());
    }
};

QTEST_GUILESS_MAIN(ExportJobTest)
#include "export_job_test.moc"
