#include "engine/microphone_pace.h"

#include <QTest>

#include <cmath>

struct Microphone {
    const char* name;
    double packetMs;
    double cycleMs = 1;      // packets come at the server's cycles
    double speed = 1;        // of its clock
    double latePacketMs = 0; // of the packet at 10 s
    double stallMs = 0;      // of the reading thread, from 10 s on
    double stallEndMs = 10'100;
    double laterPacketMs = packetMs; // from 32 s on
    double lostMs = 0;               // by the server, after 10 s
    int misplaced = 0;               // blocks

    // How much has been delivered by then, in ms.
    double delivered(double nowMs) const {
        if (nowMs > 10'000)
            nowMs = std::max(nowMs - lostMs, 10'000.0);
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

const Microphone kMicrophones[]{{"quick server", 100, 10.67},
                                {"slow server", 100, 42.67},
                                {"small packets", 10},
                                {"fast clock", 100, 1, 1.0005},
                                {"slow clock", 100, 1, 0.9995},
                                {"late packet", 100, 1, 1, 90},
                                {"stalled thread", 100, 1, 1, 0, 60},
                                {"stall over many packets", 64.0 / 3, 1, 1, 0, 40},
                                {"busy machine", 100, 1, 1, 0, 8, 60'000},
                                {"packets get smaller", 100, 1, 1, 0, 0, 0, 64.0 / 3},
                                {"packets grow", 64.0 / 3, 1, 1, 0, 0, 0, 100},
                                {"lost packets", 100, 1, 1, 0, 0, 0, 100, 70, 1}};

class MicrophonePaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void blocksAreReadEquallyLate() {
        for (const Microphone& microphone : kMicrophones) {
            qn::MicrophonePace pace(0);
            double readMs = 0;
            double first = NAN;
            int looks = 0;
            int misplaced = 0;
            for (double nowMs = 0; nowMs < 60'000; ++looks) {
                nowMs = std::max(nowMs, static_cast<double>(pace.nextLook()) / 1e6);
                if (nowMs > 10'000 && nowMs <= microphone.stallEndMs)
                    nowMs += microphone.stallMs;
                const auto now = static_cast<qint64>(nowMs * 1e6);
                if (!pace.isTime(now))
                    continue;
                const double found = microphone.delivered(nowMs) - readMs;
                pace.found(now, static_cast<qint64>(found * 1e6));
                readMs += found;
                if (found <= 0)
                    continue;
                const double lost = nowMs > 10'100 ? microphone.lostMs : 0;
                const double late = nowMs - lost - readMs / microphone.speed;
                first = std::isnan(first) ? late : first;
                // More would be a gap or an overlap for the mixer, or come too late for it.
                misplaced += std::abs(late - first) > 20 || found > 230;
            }
            QVERIFY2(readMs > 59'400 && looks < 70 * 60, microphone.name);
            QVERIFY2(misplaced <= microphone.misplaced, microphone.name);
        }
    }
};

QTEST_GUILESS_MAIN(MicrophonePaceTest)
#include "microphone_pace_test.moc"
