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

const Microphone kMicrophones[]{
    {.name = "quick server", .packetMs = 100, .cycleMs = 10.67},
    {.name = "slow server", .packetMs = 100, .cycleMs = 42.67},
    {.name = "small packets", .packetMs = 10},
    {.name = "fast clock", .packetMs = 100, .speed = 1.0005},
    {.name = "slow clock", .packetMs = 100, .speed = 0.9995},
    {.name = "late packet", .packetMs = 100, .latePacketMs = 90, .misplaced = 1},
    {.name = "lost packets", .packetMs = 100, .lostMs = 70},
    {.name = "stalled thread", .packetMs = 100, .stallMs = 60},
    {.name = "stall over many packets", .packetMs = 64.0 / 3, .stallMs = 40},
    {.name = "busy machine", .packetMs = 100, .stallMs = 8, .stallEndMs = 60'000},
    {.name = "packets get smaller", .packetMs = 100, .laterPacketMs = 64.0 / 3},
    {.name = "packets grow", .packetMs = 64.0 / 3, .laterPacketMs = 100},
};

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
