#pragma once

#include "capture/capture_backend.h"

#include <QStringList>

namespace qn::testing {

using namespace Qt::StringLiterals;

// Knobs and observations of the backends that makeCaptureBackend hands out in a test program.
// The test sets the knobs while no session runs.
struct FakePlatform {
    Catalog catalog{{{u"card"_s, u"Карта"_s}, {u"speakers"_s, u"Колонки"_s}},
                    {{u"app"_s, u"Звонилка"_s}},
                    u"speakers"_s};
    QString startError; // non-empty: every start fails with it

    QStringList started; // ids, in order
    int alive = 0;       // backends that exist
    QList<CaptureBackend*> capturing;

    static FakePlatform& instance();
};

// Emits what a tone has played since the last call (1 s at most) on every capturing backend.
void playTone();
void breakDown(const QString& message);

} // namespace qn::testing
