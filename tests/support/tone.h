#pragma once

#include "core/audio_block.h"

namespace qn::testing {

using namespace Qt::StringLiterals;

QList<float> sine(double hertz, int rate, float peak, qsizetype count);

// What the first of interleaved channels holds of one sine.
struct Tone {
    float peak = 0;
    double hertz = 0;      // of the median period; 0 without any
    qsizetype silence = 0; // the longest run of frames below a thousandth
};

Tone findTone(const QList<float>& samples, int rate, int channels = 1);

inline const QString kZerosOnly = u"zeros only, permission missing"_s;

// Why the blocks that a backend delivered until just now are no capture of a tone of 1 kHz; empty
// when they are one.
QString captureFault(const QList<AudioBlock>& blocks);

} // namespace qn::testing
