#include "tests/support/files.h"
#include "ui/playback/peak_accumulator.h"
#include "ui/playback/peak_decoder.h"
#include "ui/playback/waveform_timeline.h"

#include <array>
#include <cmath>
#include <csignal>

using namespace qn;
using namespace qn::testing;

class WaveformTimelineTest : public QObject {
    Q_OBJECT

    const QTemporaryDir folder;

    static double luminance(const QColor& color) {
        const auto linear = [](double v) {
            return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    }

    static double contrast(double a, double b) {
        return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
    }

private Q_SLOTS:
    void initTestCase() { QDir::setCurrent(folder.path()); }

    void peaksAreTheLoudestFiniteSamples() {
        PeakAccumulator accumulator;
        QList<float> samples(480 * 3 + 7, 0.0F);
        samples[5] = -0.5F;
        samples[6] = std::numeric_limits<float>::infinity();
        samples[481] = 3.0F;
        samples[482] = std::numeric_limits<float>::quiet_NaN();
        samples.last() = 0.25F;
        for (qsizetype i = 0; i < samples.size(); i += 241)
            accumulator.add(&samples[i], std::min<qsizetype>(241, samples.size() - i));
        QCOMPARE(accumulator.finish(), (QList{0.5F, 1.0F, 0.0F, 0.25F}));

        PeakAccumulator full;
        for (int i = 0; i < 100002; ++i)
            full.add(QList<float>(480, float(i) / 200000).constData(), 480);
        const QList<float> peaks = full.finish();
        QVERIFY(peaks.size() == 50001 && peaks[1] == 3.0F / 200000 &&
                peaks.last() == 100001.0F / 200000);
    }

    void aDecodeIsWhatTheToolWroteAndHowItEnded() {
        useTool("head -c 800003 /dev/zero");
        const std::optional<DecodedPeaks> whole = decodePeaks(u"any"_s);
        useTool("head -c 1920 /dev/zero; exec >&-; sleep 0.3; echo late >&2; exit 1");
        const std::optional<DecodedPeaks> failed = decodePeaks(u"any"_s);
        qunsetenv("QUORLIN_FFMPEG");
        QVERIFY(whole->ok && whole->peaks.size() == 417 && whole->errorText.isEmpty());
        QVERIFY(!failed->ok && failed->peaks.size() == 1 && failed->errorText == "late\n"_L1);
    }

    void aFileIsDecodedAndDrawnAndSoughtOncePerClickOrDrag() {
        const QString tone =
            u"-v error -f lavfi -i sine=d=1:r=48000,volume=8*gte(t\\,0.5):eval=frame tone.wav"_s;
        QProcess::execute(u"ffmpeg"_s, tone.split(u' '));
        WaveformTimeline timeline;
        QPalette palette(Qt::white);
        palette.setColor(QPalette::Highlight, Qt::red);
        palette.setColor(QPalette::Mid, Qt::darkGreen);
        timeline.setPalette(palette);
        timeline.resize(1024, 124);
        QSignalSpy ready(&timeline, &WaveformTimeline::waveformReady);
        timeline.setAudioFile(u"tone.wav"_s);
        QVERIFY(ready.wait() && ready.first().first().toBool());
        const auto pixel = [&](int x, int y) { return timeline.grab().toImage().pixelColor(x, y); };
        // Silence, the tone, and above the tone.
        QVERIFY(pixel(100, 40) == Qt::white && pixel(900, 40) == Qt::darkGreen &&
                pixel(900, 14) == Qt::white);
        timeline.setRange(0, 1000);
        timeline.setValue(950);
        QCOMPARE(pixel(900, 40), QColor(Qt::red));
        for (const auto& [base, highlight, mid] : {std::array{"#ffffff", "#f0e68c", "#f4f4f4"},
                                                   {"#1e1e1e", "#2a3440", "#262626"},
                                                   {"#808080", "#7a8a80", "#848484"},
                                                   {"#fdf6e3", "#eee8d5", "#eee8d5"}}) {
            palette.setColor(QPalette::Base, QColor(QLatin1String(base)));
            palette.setColor(QPalette::Highlight, QColor(QLatin1String(highlight)));
            palette.setColor(QPalette::Mid, QColor(QLatin1String(mid)));
            timeline.setPalette(palette);
            timeline.setValue(950);
            const double back = luminance(palette.color(QPalette::Base));
            QVERIFY(contrast(back, luminance(pixel(900, 40))) >= 3.0);
            timeline.setValue(0);
            QVERIFY(contrast(back, luminance(pixel(900, 40))) >= 1.8);
        }
        timeline.setValue(950);
        timeline.setAudioFile(u"pipe:"_s);
        QVERIFY(ready.wait() && !ready.last().first().toBool());

        QSignalSpy changed(&timeline, &QSlider::valueChanged);
        timeline.setRange(0, 100000);
        QTest::mousePress(&timeline, Qt::LeftButton, {}, {512, 30});
        QCOMPARE(timeline.sliderPosition(), 50000);
        QTest::mouseMove(&timeline, {262, 30});
        QVERIFY(timeline.sliderPosition() == 25000 && changed.isEmpty());
        QTest::mouseRelease(&timeline, Qt::LeftButton, {}, {1020, 30});
        QCOMPARE(changed, (QList<QVariantList>{{100000}}));
        QTest::mouseClick(&timeline, Qt::LeftButton, {}, {5, 30});
        QCOMPARE(timeline.value(), 0);
    }

    void anotherFileOrTheEndStopsTheDecoder() {
        auto timeline = std::make_unique<WaveformTimeline>();
        QSignalSpy ready(timeline.get(), &WaveformTimeline::waveformReady);
        timeline->setAudioFile(u"tone.wav"_s);
        timeline->findChild<QThread*>()->wait(); // its result is queued, and too late
        for (const QByteArray script :
             {"exec cat /dev/zero >&2", "exec sleep 60", "exec cat /dev/zero"}) {
            useTool("echo $$ >pid\n" + script);
            timeline->setAudioFile(QString::fromLatin1(script));
            QTRY_VERIFY(!contents(u"pid"_s).isEmpty());
            const int process = contents(u"pid"_s).trimmed().toInt();
            QFile::remove(u"pid"_s);
            const QDeadlineTimer limit(script.endsWith("zero") ? 1000 : 50);
            if (script.endsWith("zero"))
                timeline.reset();
            else
                timeline->setAudioFile({});
            QVERIFY(!limit.hasExpired());
            QTRY_VERIFY_WITH_TIMEOUT(kill(process, 0) != 0, 1000);
        }
        qunsetenv("QUORLIN_FFMPEG");
        QVERIFY(ready.isEmpty());
    }
};

QTEST_MAIN(WaveformTimelineTest)
#include "waveform_timeline_test.moc"
