#pragma once

#include <QList>

namespace qn {

// Finds the loudest sample of every stretch of a recording, 0.0 to 1.0. A stretch is 10 ms of
// 48 kHz audio at first. Whenever there are 100,000 of them, neighbours merge and the length of a
// stretch doubles.
class PeakAccumulator {
public:
    void add(const float* samples, qsizetype count);

    // Closes the last stretch, full or not, and returns the peaks of all.
    QList<float> finish();

private:
    void closeBucket();
    void halve();

    QList<float> peaks;
    qsizetype bucketSize = 480;
    qsizetype bucketCount = 0; // samples in the open bucket
    float bucketPeak = 0.0F;
};

} // namespace qn
