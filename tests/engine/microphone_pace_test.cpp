#include "engine/microphone_pace.h"
#include "engine/timeline_cursor.h"

#include <QTest>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kEndMs = 600'000;

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
    int jumps = 0;                   // of the mixer's cursor that can't be helped

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
    {.name = "long packets", .packetMs = 128, .stallMs = 12},
    {.name = "fast clock", .packetMs = 100, .speed = 1.0002, .jumps = 5},
    {.name = "slow clock", .packetMs = 100, .speed = 0.9998, .jumps = 5},
    {.name = "late packet", .packetMs = 100, .latePacketMs = 90},
    {.name = "lost packets", .packetMs = 100, .lostMs = 70, .jumps = 1},
    {.name = "longer loss", .packetMs = 100, .lostMs = 120, .jumps = 1},
    {.name = "late poll", .packetMs = 64, .stallMs = 12},
    {.name = "late poll of a slow server", .packetMs = 100, .cycleMs = 42.67, .stallMs = 12},
    {.name = "stalled thread", .packetMs = 100, .stallMs = 60},
    {.name = "stall over many packets", .packetMs = 64.0 / 3, .stallMs = 40},
    {.name = "long stall", .packetMs = 100, .stallMs = 500},
    {.name = "busy machine", .packetMs = 100, .stallMs = 9, .stallEndMs = kEndMs},
    {.name = "overload", .packetMs = 64, .stallMs = 30, .stallEndMs = kEndMs, .jumps = 800},
    {.name = "packets get smaller", .packetMs = 100, .laterPacketMs = 64.0 / 3},
    {.name = "packets grow", .packetMs = 64.0 / 3, .laterPacketMs = 100},
    {.name = "packets grow by a multiple", .packetMs = 32, .laterPacketMs = 96},
};

} // namespace

class MicrophonePaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void blocksAreReadEquallyLate_data() {
        QTest::addColumn<const Microphone*>("microphone");
        for (const Microphone& microphone : kMicrophones)
            QTest::newRow(microphone.name) << &microphone;
    }

    void blocksAreReadEquallyLate() {
        QFETCH(const Microphone*, microphone);
        qn::MicrophonePace pace(0);
        qn::TimelineCursor cursor;
        double readMs = 0;
        int polls = 0;
        int jumps = 0;
        for (double nowMs = 0; nowMs < kEndMs; ++polls) {
            nowMs = std::max(nowMs, static_cast<double>(pace.nextPoll()) / 1e6);
            if (nowMs > 10'000 && nowMs <= microphone->stallEndMs)
                nowMs += microphone->stallMs;
            const double found = microphone->delivered(nowMs) - readMs;
            if (!pace.shouldRead(std::llround(nowMs * 1e6), std::llround(found * 1e6)))
                continue;
            readMs += found;
            const qint64 before = cursor.next;
            cursor.follow(std::llround((nowMs - found) * 48));
            jumps += before != -1 && std::abs(cursor.next - before) > 1;
            cursor.next += std::llround(found * 48);
            QVERIFY(found < 230 || microphone->stallMs > 200); // or it comes too late for the mix
            const double ageMs = nowMs - microphone->lostMs - readMs / microphone->speed;
            QVERIFY(ageMs < 50);
        }
        QVERIFY(readMs > kEndMs - 500);
        QVERIFY2(polls < 70 * kEndMs / 1000, qPrintable(QString::number(polls)));
        QVERIFY2(jumps <= microphone->jumps, qPrintable(QString::number(jumps)));
    }
};

QTEST_GUILESS_MAIN(MicrophonePaceTest)
#include "microphone_pace_test.moc"
