#pragma once

#include <QObject>

namespace qn {

// Hands every second pair of levels on, the louder of two. It lives on the recorder's thread, so
// that the window's wakes 25 times a second, as often as the meters paint, and not 50 times.
class LevelRelay : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void add(float microphone, float system);

Q_SIGNALS:
    void levels(float microphone, float system);

private:
    bool isWaiting = false; // for the second of two
    float loudestMicrophone = 0;
    float loudestSystem = 0;
};

} // namespace qn
