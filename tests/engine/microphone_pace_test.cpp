#include "engine/microphone_pace.h"

#include <QTest>

#include <cmath>

namespace {

constexpr double kMs = 1e6;

struct Microphone {
    double packetMs;
    double cycleMs;          // packets come at the server's cycles
    double speed = 1;        // of its clock
    double latePacketMs = 0; // of the packet at 10 s
    double stallMs = 0;      // of the reading thread, from 10 s on
    double stallEndMs = 10'100;
    double laterPacketMs = packetMs; // from 32 s on

    // How much has been delivered by then, in ms.
    double delivered(double nowMs) const {
        const double length = nowMs < 32'000 ? packetMs : laterPacketMs;
        double packets = std::floor(nowMs * speed / length);
        const auto arrival = [&](double packet) {
            const double end = packet * length / speed;
            const bool isLate = end > 10'000 && end <= 10'000 + length;
            return std::ceil(end / cycleMs - 1e-9) * cycleMs + (isLate ? latePacketMs : 0);
        };
        while (packets > 0 && arrival(packets) > nowMs)
            --packets;
        return packets * length;
    }
};

} // namespace

class MicrophonePaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void blocksAreReadEquallyLate_data() {
        QTest::addColumn<Microphone>("microphone");
        QTest::newRow("whole packets") << Microphone{100, 1};
        QTest::newRow("quick server") << Microphone{100, 10.67};
        QTest::newRow("slow server") << Microphone{100, 42.67};
        QTest::newRow("small packets") << Microphone{10, 1};
        QTest::newRow("fast clock") << Microphone{100, 1, 1.0005};
        QTest::newRow("slow clock") << Microphone{100, 1, 0.9995};
        QTest::newRow("late packet") << Microphone{100, 1, 1, 90};
        QTest::newRow("stalled thread") << Microphone{100, 1, 1, 0, 60};
        QTest::newRow("stall over packets") << Microphone{64.0 / 3, 1, 1, 0, 60};
        QTest::newRow("busy machine") << Microphone{100, 1, 1, 0, 8, 60'000};
        QTest::newRow("packets get smaller") << Microphone{100, 1, 1, 0, 0, 0, 64.0 / 3};
        QTest::newRow("packets grow") << Microphone{64.0 / 3, 1, 1, 0, 0, 0, 100};
    }

    void blocksAreReadEquallyLate() {
        QFETCH(const Microphone, microphone);
        qn::MicrophonePace pace(0);
        double readMs = 0;
        double first = -1;
        double looks = 0;
        double nowMs = 0;
        while (nowMs < 60'000) {
            nowMs = std::max(nowMs, static_cast<double>(pace.nextLook()) / kMs);
            if (nowMs > 10'000 && nowMs <= microphone.stallEndMs)
                nowMs += microphone.stallMs;
            ++looks;
            const auto now = static_cast<qint64>(nowMs * kMs);
            if (!pace.isTime(now))
                continue;
            const double found = microphone.delivered(nowMs) - readMs;
            pace.found(now, static_cast<qint64>(found * kMs));
            readMs += found;
            if (found <= 0)
                continue;
            const double late = nowMs - readMs / microphone.speed;
            first = first < 0 ? late : first;
            // More than that is a gap or an overlap for the mixer, or comes too late for it.
            QVERIFY2(std::abs(late - first) <= 20 && found < 230,
                     qPrintable(QString::number(nowMs)));
        }
        QVERIFY(readMs > 59'500);
        QVERIFY2(looks / 60 < 70, qPrintable(QString::number(looks / 60)));
    }
};

Q_DECLARE_METATYPE(Microphone)

QTEST_GUILESS_MAIN(MicrophonePaceTest)
#include "microphone_pace_test.moc"
