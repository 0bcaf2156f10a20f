#pragma once

#include <QList>

namespace qn {

// The loudest sample of every stretch of a recording, 0.0 to 1.0. Stretches are 10 ms of 48 kHz
// audio at first; whenever the list is full, neighbours merge and the stretches double, so that it
// stays under 100,000 entries whatever the length.
class PeakAccumulator {
public:
    void add(const float* samples, qsizetype count);

    // Closes the last stretch, full or not, and hands the list over.
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
