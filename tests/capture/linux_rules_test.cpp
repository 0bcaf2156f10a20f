#include "capture/linux/block_builder.h"
#include "capture/linux/channel_order.h"
#include "capture/linux/pulse_catalog.h"
#include "capture/linux/stream_plan.h"

#include <QTest>

#include <pulse/def.h>

#include <random>

using namespace qn;
using namespace Qt::StringLiterals;

class LinuxRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void channelsFollowTheWaveOrder();
    void oneEntryPerProgramThatPlays();
    void recordingsFollowTheStreams();
    void timesStayWhateverThePacketsDo();
};

void LinuxRulesTest::channelsFollowTheWaveOrder() {
    const struct {
        const char *asked, *ordered;
        quint64 mask;
    } cases[] = {
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
    snapshot.sinks = {{1, u"usb"_s, u"USB\n карта"_s, {}, {}, {}}, {2, u"a\tb"_s, {}, {}, {}, {}}};
    snapshot.defaultSink = u"a\tb"_s;
    snapshot.clients[7] = {{}, u"mpv"_s, u"io.mpv"_s, {}, u"70"_s};
    const ProgramFacts programs[] = {
        {{}, u"firefox"_s, {}, u"Firefox"_s, u"10"_s},
        {{}, u"firefox"_s, {}, u"Firefox tab"_s, u"11"_s}, // a helper process
        {{}, u"quorlin"_s, {}, u"Quorlin"_s, u"42"_s},     // this process
        {},                                                // the server's own
        {u"org.app"_s, u"bin"_s, {}, u"App"_s, u"12"_s},   // sandboxed
        {{}, u"slack"_s, {}, u"Chromium"_s, {}},
        {{}, u"python3"_s, {}, u"Radio"_s, {}},
        {{}, u"python3"_s, {}, u"QtPulseAudio:99"_s, {}},
        {{}, u"two\nlines"_s, {}, u"x"_s, {}}, // no usable id
    };
    for (const ProgramFacts& program : programs)
        snapshot.inputs.append({0, 0, PA_INVALID_INDEX, program});
    snapshot.inputs.append(
        {5, 0, 7, {{}, {}, {}, u"mpv Player"_s, {}}}); // its client says the rest
    const Catalog catalog = catalogOf(snapshot, u"42"_s);
    QString entries;
    for (const SourceEntry& entry : catalog.outputs + catalog.applications)
        entries += entry.id + u'|' + entry.name + u';';
    QCOMPARE(entries, u"usb|USB карта;firefox|Firefox;org.app|App;slack|slack;python3:Radio|Radio;"
                      "python3|python3;mpv|mpv Player;"_s);
    QCOMPARE(catalog.defaultOutput, QString());
    QCOMPARE(inputsOf(snapshot, u"firefox"_s, u"42"_s).size(), 2);
    QVERIFY(inputsOf(snapshot, u"quorlin"_s, u"42"_s).isEmpty());
}

void LinuxRulesTest::recordingsFollowTheStreams() {
    StreamPlan plan = planStreams(
        {{1, {10, false}}, {2, {10, true}}, {3, {10, false}}, {4, {10, false}}, {5, {10, false}}},
        {{1, 10, 0, {}},
         {2, 10, 0, {}},
         {3, 20, 0, {}},
         {4, PA_INVALID_INDEX, 0, {}},
         {6, 10, 0, {}},
         {7, PA_INVALID_INDEX, 0, {}}});
    std::sort(plan.close.begin(), plan.close.end());
    QCOMPARE(plan.close, (QList<quint32>{2, 3, 5})); // broken, moved, ended
    QCOMPARE(plan.open, (QList<quint32>{2, 3, 6}));
}

// A minute of packets with jitter, bursts, a lost first cycle, stalls and a pause.
void LinuxRulesTest::timesStayWhateverThePacketsDo() {
    const struct {
        int packetFrames, burst;
        double drift, pauseNs;
    } cases[] = {{1024, 1, -1e-3, 0}, {1024, 1, 1e-3, 3e9}, {480, 3, 0, 3e9}, {4096, 1, 0, 0}};
    for (const auto& [packetFrames, burst, drift, pauseNs] : cases) {
        std::mt19937 random(1);
        double playedNs = 1e9, arrivalNs = 0, worstNs = 0; // samples hold their time in ms
        qint64 frames = 0;
        BlockBuilder builder({}, [&](const AudioBlock& block) {
            if (frames > 4096) // the first packet is moved to its successors
                worstNs =
                    std::max(worstNs, std::abs(double(block.timestampNs) - block.samples[0] * 1e6));
            frames += block.samples.size();
            QVERIFY(block.samples.size() <= 1024);
        });
        const int packets = 60 * 48000 / packetFrames;
        for (int i = 0; i < packets; ++i) {
            const double stepNs = 1e9 / 48000 / (1 + drift);
            QList<float> samples;
            for (int k = 0; k < packetFrames; ++k, playedNs += stepNs)
                samples.append(static_cast<float>(playedNs / 1e6));
            if (i % burst == 0)
                arrivalNs = std::max(arrivalNs, playedNs + (burst - 1) * packetFrames * stepNs +
                                                    static_cast<double>(random() % 6'000'000));
            if (i % 700 == 300)
                arrivalNs += i == 300 ? 4e8 : 6e7;
            builder.add(samples.constData(), packetFrames, static_cast<qint64>(arrivalNs));
            playedNs += i == 0 ? 21e6 : i == 500 ? pauseNs : 0;
        }
        QVERIFY2(worstNs < 1e7, qPrintable(QString::number(worstNs)));
        QVERIFY(packets * packetFrames - frames < packetFrames + 1024);
    }
}

QTEST_GUILESS_MAIN(LinuxRulesTest)
#include "linux_rules_test.moc"
