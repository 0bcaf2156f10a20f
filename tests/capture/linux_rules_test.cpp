#include "capture/linux/block_builder.h"
#include "capture/linux/channel_order.h"
#include "capture/linux/pulse_catalog.h"
#include "capture/linux/stream_plan.h"

#include <QTest>

#include <pulse/def.h>

#include <algorithm>
#include <random>

using namespace qn;
using namespace Qt::StringLiterals;

class LinuxRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void channelsFollowTheWaveOrder();
    void oneEntryPerProgramThatPlays();
    void recordingsFollowTheStreams();
    void timesStayWhateverThePacketsDo_data();
    void timesStayWhateverThePacketsDo();
};

void LinuxRulesTest::channelsFollowTheWaveOrder() {
    const struct {
        const char* asked;
        const char* ordered;
        quint64 mask;
    } cases[] = {
        {"front-left,front-right", "front-left,front-right", 0x3},
        {"front-left,front-right,rear-left,rear-right,front-center,lfe",
         "front-left,front-right,front-center,lfe,rear-left,rear-right", 0x3F},
        {"top-rear-right,side-left,front-right", "front-right,side-left,top-rear-right", 0x20202},
        {"mono", "mono", 0},
        {"front-right,front-right", "front-right,front-right", 0},
        {"rear-left,aux3,front-left", "rear-left,aux3,front-left", 0},
    };
    for (const auto& [asked, ordered, mask] : cases) {
        pa_channel_map map;
        pa_channel_map_parse(&map, asked);
        const ChannelOrder order = waveOrder(map);
        char text[PA_CHANNEL_MAP_SNPRINT_MAX];
        QCOMPARE(pa_channel_map_snprint(text, sizeof text, &order.map), ordered);
        QCOMPARE(order.mask, mask);
    }
}

void LinuxRulesTest::oneEntryPerProgramThatPlays() {
    ServerSnapshot snapshot;
    snapshot.sinks = {{1, u"usb"_s, u"USB\n cкарта"_s, {}, {}, {}}, {2, u"a\tb"_s, {}, {}, {}, {}}};
    snapshot.defaultSink = u"a\tb"_s;
    snapshot.clients[7] = {{}, u"mpv"_s, u"io.mpv"_s, u"mpv Player"_s, u"70"_s};
    const ProgramFacts programs[] = {
        {{}, u"firefox"_s, {}, u"Firefox"_s, u"10"_s},
        {{}, u"firefox"_s, {}, u"Firefox tab"_s, u"11"_s}, // a helper process
        {{}, u"quorlin"_s, {}, u"Quorlin"_s, u"42"_s},     // this process
        {},                                                // the server's own
        {u"org.app"_s, u"bin"_s, {}, u"App"_s, u"12"_s},   // sandboxed
        {{}, u"slack"_s, {}, u"Chromium"_s, {}},
        {{}, u"python3"_s, {}, u"Radio"_s, {}},
        {{}, u"python3"_s, {}, u"QtPulseAudio:99"_s, {}},
        {{}, {}, {}, u"ALSA plug-in [aplay]"_s, {}},
        {{}, u"two\nlines"_s, {}, u"x"_s, {}}, // no usable id
    };
    for (const ProgramFacts& program : programs)
        snapshot.inputs.append({0, 0, PA_INVALID_INDEX, program});
    snapshot.inputs.append({5, 0, 7, {{}, {}, {}, u"mpv"_s, {}}}); // the rest says its client
    const Catalog catalog = catalogOf(snapshot, u"42"_s);
    QStringList entries;
    for (const SourceEntry& entry : catalog.outputs + catalog.applications)
        entries.append(entry.id + u'|' + entry.name);
    QCOMPARE(entries.join(u';'),
             u"usb|USB cкарта;firefox|Firefox;org.app|App;slack|slack;python3:Radio|Radio;"
             "python3|python3;ALSA plug-in [aplay]|ALSA plug-in [aplay];mpv|mpv"_s);
    QCOMPARE(catalog.defaultOutput, QString());
    QCOMPARE(inputsOf(snapshot, u"firefox"_s, u"42"_s).size(), 2);
    QCOMPARE(inputsOf(snapshot, u"mpv"_s, u"42"_s).value(0).index, 5U);
    QVERIFY(inputsOf(snapshot, u"quorlin"_s, u"42"_s).isEmpty());
}

void LinuxRulesTest::recordingsFollowTheStreams() {
    const QHash<quint32, OpenRecording> recordings{
        {1, {10, false}}, {2, {10, true}}, {3, {10, false}}, {4, {10, false}}, {5, {10, false}}};
    const QList<InputFacts> streams{{1, 10, 0, {}}, {2, 10, 0, {}},
                                    {3, 20, 0, {}}, {4, PA_INVALID_INDEX, 0, {}},
                                    {6, 10, 0, {}}, {7, PA_INVALID_INDEX, 0, {}}};
    StreamPlan plan = planStreams(recordings, streams);
    std::sort(plan.close.begin(), plan.close.end());
    QCOMPARE(plan.close, (QList<quint32>{2, 3, 5})); // broken, moved, ended
    QCOMPARE(plan.open, (QList<quint32>{2, 3, 6}));
}

void LinuxRulesTest::timesStayWhateverThePacketsDo_data() {
    QTest::addColumn<int>("packetFrames");
    QTest::addColumn<int>("burst"); // packets at once
    QTest::addColumn<double>("drift");
    QTest::addColumn<qint64>("lostNs"); // a hole after the 500th packet
    QTest::newRow("cycles") << 1024 << 1 << 0.0 << qint64(0);
    QTest::newRow("bursts") << 480 << 3 << 0.0 << qint64(0);
    QTest::newRow("slow device") << 1024 << 1 << -100e-6 << qint64(0);
    QTest::newRow("fast device") << 1024 << 1 << 100e-6 << qint64(0);
    QTest::newRow("pause") << 1024 << 1 << 0.0 << qint64(3'000'000'000);
    QTest::newRow("large packets") << 4096 << 1 << 0.0 << qint64(0);
}

// A minute of packets with jitter, a lost first cycle and stalls of 60 and 400 ms.
void LinuxRulesTest::timesStayWhateverThePacketsDo() {
    QFETCH(int, packetFrames);
    QFETCH(int, burst);
    QFETCH(double, drift);
    QFETCH(qint64, lostNs);
    std::mt19937 random(1);
    qint64 arrivalNs = 0;
    qint64 worstNs = 0;
    qint64 frames = 0;
    double playedNs = 1e9; // when the packet's last frame is played
    AudioBlock format;
    BlockBuilder builder(format, [&](const AudioBlock& block) {
        const auto truthNs = static_cast<qint64>(block.samples.first()) * 1'000'000;
        if (frames > 4096) // the first packet is moved to its successors
            worstNs = std::max(worstNs, std::abs(block.timestampNs - truthNs));
        frames += block.samples.size();
        QVERIFY(block.samples.size() <= 1024);
    });
    const int packets = 60 * 48000 / packetFrames;
    for (int i = 0; i < packets; ++i) {
        const double lengthNs = packetFrames * (1e9 / 48000) / (1 + drift);
        const double startNs = playedNs;
        playedNs += lengthNs;
        QList<float> samples(packetFrames);
        for (int k = 0; k < packetFrames; ++k)
            samples[k] = static_cast<float>((startNs + k * lengthNs / packetFrames) / 1e6);
        if (i % burst == 0)
            arrivalNs = std::max(arrivalNs, static_cast<qint64>(playedNs + (burst - 1) * lengthNs) +
                                                static_cast<qint64>(random() % 6'000'000));
        if (i % 700 == 300)
            arrivalNs += i == 300 ? 400'000'000 : 60'000'000;
        builder.add(samples.constData(), packetFrames, arrivalNs);
        if (i == 0 || i == 500)
            playedNs += i == 0 ? 21e6 : double(lostNs);
    }
    QVERIFY2(worstNs < 10'000'000, qPrintable(QString::number(worstNs)));
    QVERIFY(packets * qint64(packetFrames) - frames < packetFrames + 1024);
}

QTEST_GUILESS_MAIN(LinuxRulesTest)
#include "linux_rules_test.moc"
