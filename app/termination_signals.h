#pragma once

#include <QObject>

class QSocketNotifier;

namespace qn {

// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the main thread, so that a recording is
// finished before the program ends. Only one object may exist at a time.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    QSocketNotifier* notifier = nullptr;
};

} // namespace qn
