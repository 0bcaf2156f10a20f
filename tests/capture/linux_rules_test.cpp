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
    void channelsFollowTheWaveOrder() {
        const struct {
            const char *asked, *ordered;
            quint64 mask;
        } cases[] = {
            {"top-rear-right,side-left,lfe,front-right", "front-right,lfe,side-left,top-rear-right",
             0x2020A},
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

    void oneEntryPerProgramThatPlays() {
        ServerSnapshot snapshot;
        snapshot.sinks = {{1, u"usb"_s, u"USB\a карта"_s, {}, {}, {}},
                          {2, u"a\tb"_s, {}, {}, {}, {}}};
        snapshot.defaultSink = u"a\tb"_s;
        snapshot.clients[7] = {{}, u"mpv"_s, u"io.mpv"_s, {}, u"70"_s};
        const std::pair<quint32, ProgramFacts> streams[] = {
            {0, {{}, u"firefox"_s, {}, u"Firefox"_s, u"10"_s}},
            {0, {{}, u"firefox"_s, {}, u"Firefox tab"_s, u"11"_s}}, // a helper process
            {0, {{}, u"quorlin"_s, {}, u"Quorlin"_s, u"42"_s}},     // this process
            {0, {}},                                                // the server's own
            {0, {u"org.app"_s, u"bin"_s, {}, u"App"_s, u"12"_s}},   // sandboxed
            {0, {{}, u"slack"_s, {}, u"Chromium"_s, {}}},
            {0, {{}, u"python3"_s, {}, u"Radio"_s, {}}},
            {0, {{}, u"python3"_s, {}, u"QtPulseAudio:99"_s, {}}},
            {0, {{}, u"two\nlines"_s, {}, u"x"_s, {}}}, // no usable id
            {7, {{}, {}, {}, u"mpv Player"_s, {}}},     // its client says the rest
        };
        for (const auto& [client, program] : streams)
            snapshot.inputs.append({0, 0, client, program});
        const Catalog catalog = catalogOf(snapshot, u"42"_s);
        QString entries;
        for (const SourceEntry& entry : catalog.outputs + catalog.applications)
            entries += entry.id + u'|' + entry.name + u';';
        QCOMPARE(entries, u"usb|USB карта;firefox|Firefox;org.app|App;slack|slack;"
                          "python3:Radio|Radio;python3|python3;mpv|mpv Player;"_s);
        QCOMPARE(catalog.defaultOutput, QString());
        QCOMPARE(inputsOf(snapshot, u"firefox"_s, u"42"_s).size(), 2);
        QVERIFY(inputsOf(snapshot, u"quorlin"_s, u"42"_s).isEmpty());
    }

    void recordingsFollowTheStreams() {
        constexpr quint32 kMoving = PA_INVALID_INDEX;
        const QList<InputFacts> streams = {{1, 10, 0, {}}, {2, 10, 0, {}},
                                           {3, 20, 0, {}}, {4, kMoving, 0, {}},
                                           {6, 10, 0, {}}, {7, kMoving, 0, {}}};
        StreamPlan plan =
            planStreams({{1, {10}}, {2, {10, true}}, {3, {10}}, {4, {10}}, {5, {10}}}, streams);
        std::sort(plan.close.begin(), plan.close.end());
        QCOMPARE(plan.close, (QList<quint32>{2, 3, 5})); // broken, moved, ended
        QCOMPARE(plan.open, (QList<quint32>{2, 3, 6}));
    }

    // A minute of packets with jitter, a lost first cycle, a pause, and stalls that end in bursts.
    void timesStayWhateverThePacketsDo() {
        const struct {
            int packetFrames;
            double drift, pauseNs;
        } cases[] = {{1024, -1e-3, 0}, {480, 1e-3, 3e9}, {4096, 0, 0}};
        for (const auto& [packetFrames, drift, pauseNs] : cases) {
            std::mt19937 random(1);
            double playedNs = 1e9, arrivalNs = 0, worstNs = 0; // samples hold their time in ms
            qint64 frames = 0;
            BlockBuilder builder({}, [&](const AudioBlock& block) {
                const double offNs = double(block.timestampNs) - block.samples[0] * 1e6;
                if (frames > 4096) // the first packet is moved to its successors
                    worstNs = std::max(worstNs, std::abs(offNs));
                frames += block.samples.size();
                QVERIFY(block.samples.size() <= 1024);
            });
            const int packets = 60 * 48000 / packetFrames;
            for (int i = 0; i < packets; ++i) {
                QList<float> samples;
                for (int k = 0; k < packetFrames; ++k, playedNs += 1e9 / 48000 / (1 + drift))
                    samples.append(static_cast<float>(playedNs / 1e6));
                arrivalNs = std::max(arrivalNs, playedNs + double(random() % 6'000'000));
                if (i % 700 == 300)
                    arrivalNs += i == 300 ? 4e8 : 6e7;
                builder.add(samples.constData(), packetFrames, static_cast<qint64>(arrivalNs));
                playedNs += i == 0 ? 21e6 : i == 500 ? pauseNs : 0;
            }
            QVERIFY2(worstNs < 1e7, qPrintable(QString::number(worstNs)));
            QVERIFY(packets * packetFrames - frames < packetFrames + 1024);
        }
    }
};

QTEST_GUILESS_MAIN(LinuxRulesTest)
#include "linux_rules_test.moc"
