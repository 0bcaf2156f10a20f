#include "engine/timeline_mixer.h"

#include <QTest>

#include <cmath>

namespace {

// Name, steps, expected result. Steps are blocks of one frame repeated,
// "input:index:count:frame[:rate[:key[:mask]]]", and reads, "r:count". The result is runs,
// "index:count:value"; all else is silence.
using Script = std::array<QByteArray, 3>;

QByteArray blocksOfManySources(int others) {
    QByteArray steps = "1:0:480:.2:48000:app ";
    for (int k = 0; k < others; ++k)
        steps += "1:0:1:0:48000:" + QByteArray::number(k) + ' ';
    return steps + "1:1100:480:.2:48000:app";
}

const Script kScripts[]{
    {"jitter up to 20 ms is seamless", "0:9:480:.2 0:1449:480:.4", "9:480:.2 489:480:.4"},
    {"more than 20 ms is a gap", "0:9:480:.2 0:1450:480:.4", "9:480:.2 1450:480:.4"},
    {"too early adds up", "0:0:2000:.2 0:1039:961:.4", "0:1039:.2 1039:961:.6"},
    {"drift moves one sample, once a second", "0:0:48000:.2 0:48481:9:.4 0:48900:9:.6",
     "0:48000:.2 48001:9:.4 48010:9:.6"},
    {"drift moves back", "0:0:50000:.2 0:49519:1:.4", "0:49999:.2 49999:1:.6"},
    {"10 ms is no drift", "0:0:48000:.2 0:48480:9:.4", "0:48000:.2 48000:9:.4"},
    {"sources are independent", "0:0:9:.2 1:5:9:.2 1:10:9:.4:48000:b",
     "0:5:.2 5:4:.4 9:1:.2 10:4:.6 14:5:.4"},
    {"the sum is clamped", "0:0:9:.7 1:0:9:.7 0:2000:9:-.7 1:2000:9:-.7", "0:9:1 2000:9:-1"},
    {"what was read is lost", "r:500 0:0:600:.2", "500:100:.2"},
    {"4 s ahead is lost", "0:191990:20:.2 r:100 0:192010:20:.4", "191990:10:.2 192010:20:.4"},
    {"a new rate starts afresh", "0:0:9:.2 0:9:480:0:44100 0:700:9:.4", "0:9:.2 700:9:.4"},
    {"low frequency is dropped", "0:0:9:.1,.2,.4,.9:48000::15", "0:9:.2153009"},
    {"channels beyond the mask count", "0:0:9:.5,.2:48000::4", "0:9:.3242641"},
    {"finite samples are averaged", "0:0:9:.6,nan 1:0:9:inf 0:2000:9:.2,.6", "0:9:.3 2000:9:.4"},
    {"33 channels are refused", "1:0:9999:.5:7999 1:0:9:.5" + QByteArray(",.5").repeated(32),
     "0:0:0"},
    {"129 sources are kept", blocksOfManySources(128), "0:960:.2"},
    {"the 130th clears them", blocksOfManySources(129), "0:480:.2 1100:480:.2"},
};

qn::AudioBlock blockOf(const QByteArrayList& step) {
    qn::AudioBlock block;
    for (int k = 0; k < step[2].toInt(); ++k)
        for (const QByteArray& sample : step[3].split(','))
            block.samples << sample.toFloat();
    block.channels = static_cast<int>(step[3].count(',')) + 1;
    block.timestampNs = std::llround(step[1].toDouble() * 1e9 / 48000);
    block.sampleRate = step.value(4, "48000").toInt();
    block.sourceKey = QString::fromUtf8(step.value(5));
    block.channelMask = step.value(6).toULongLong();
    return block;
}

// Index of the first sample that is off by more than that, -1 when there is none.
qsizetype firstDifference(const QList<float>& mix, const QList<float>& expected, float tolerance) {
    const auto near = [&](float a, float b) { return std::abs(a - b) <= tolerance; };
    const auto [found, _] = std::mismatch(mix.begin(), mix.end(), expected.begin(), near);
    return found == mix.end() ? -1 : found - mix.begin();
}

} // namespace

class TimelineMixerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void placesBlocksByTheirTimes() {
        for (const auto& [name, steps, runs] : kScripts) {
            qn::TimelineMixer mixer;
            QList<float> mix;
            for (const QByteArray& text : steps.split(' '))
                if (const QByteArrayList step = text.split(':'); step[0] == "r")
                    mix += mixer.read(step[1].toInt());
                else
                    mixer.push(step[0].toInt(), blockOf(step));
            mix += mixer.read(200'000);
            QList<float> expected(mix.size(), 0.0F);
            for (const QByteArray& text : runs.split(' ')) {
                const QByteArrayList run = text.split(':');
                std::fill_n(expected.begin() + run[0].toInt(), run[1].toInt(), run[2].toFloat());
            }
            const qsizetype off = firstDifference(mix, expected, 1e-6F);
            QVERIFY2(off < 0, (name + ": at " + QByteArray::number(off)).constData());
        }
    }

    void resamplesInStepAndWithoutSeams() {
        QList<float> expected;
        for (const int rate : {48000, 22050, 32000, 44100}) {
            qn::TimelineMixer mixer;
            QList<float> mix;
            for (int tick = 0; tick < 250; ++tick) { // 5 s: the ring wraps
                qn::AudioBlock block{{}, rate, 1, tick * 20'000'000LL, 0, {}};
                for (int frame = tick * rate / 50; frame < (tick + 1) * rate / 50; ++frame)
                    block.samples << static_cast<float>(.5 * std::sin(6000.0 * frame / rate));
                if (rate == 48000)
                    expected += block.samples;
                mixer.push(0, block);
                if (tick >= 10) // the filter's delay
                    mix += mixer.read(960);
            }
            std::copy_n(expected.begin(), 4800, mix.begin()); // the filter's start
            QCOMPARE(firstDifference(mix, expected, 2e-3F), -1);
        }
    }

    void levelFallsOnlyWithBlocks() {
        qn::TimelineMixer mixer;
        mixer.push(0, {QList<float>(100, -.8F), 48000, 1, 0, 0, {}});
        mixer.push(0, {{1.F}, 48000, 1, 5'000'000'000, 0, {}}); // too far ahead to be heard
        mixer.push(0, {{1.F}, 48000, 1, 0, 8, {}});             // only a low-frequency channel
        mixer.read(960);
        QCOMPARE(mixer.level(0), .8F * .85F);
    }

    void survivesAbsurdInput() {
        constexpr qint64 kFirst = std::numeric_limits<qint64>::min();
        qn::TimelineMixer mixer;
        mixer.reset(kFirst);
        for (const int channels : {3, 1}) // of three channels, two samples are no frame
            mixer.push(0, {{3e38F, 3e38F}, 44100, channels, kFirst, 0, {}});
        mixer.push(1, {{1.F}, 48000, 1, std::numeric_limits<qint64>::max(), 0, {}});
        QCOMPARE(mixer.read(400'000)[0], 0.0F);
    }
};

QTEST_GUILESS_MAIN(TimelineMixerTest)
#include "timeline_mixer_test.moc"
