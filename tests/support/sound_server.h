#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace qn::testing {

using namespace Qt::StringLiterals;

// A sound server of the test's own, with the sink "speakers" and the microphone "mic"; this
// process and its children use it and no other. Its end proves that no process is left.
class SoundServer {
public:
    enum class Kind { PulseAudio, PipeWire };

    explicit SoundServer(Kind chosenKind);
    ~SoundServer();

    // Knobs. start() after kill() is a restart; a frozen server answers nothing until it thaws.
    void start();
    void kill();
    void freeze();
    void thaw();

    // Plays a sine of that peak as the given program, until the returned process ends.
    QProcess& play(const QString& program, float peak, const QStringList& options = {});

    // Runs pactl and returns what it prints, for example the number of a loaded module.
    QString control(const QStringList& arguments);

    // A sink by that name; the module's number, for "unload-module".
    QString addSink(const QString& name);

private:
    void signalAll(int signal);

    Kind kind;
    QTemporaryDir home;
    QProcess server;
    std::vector<std::unique_ptr<QProcess>> players;
};

} // namespace qn::testing
