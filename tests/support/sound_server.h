#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace qn::testing {

using namespace Qt::StringLiterals;

// A sound server of the test's own, with the default sink "speakers"; this process and its children
// use it and no other. Its end proves that no process is left.
class SoundServer {
public:
    enum Kind { PulseAudio, PipeWire };

    // For initTestCase_data: every kind that is installed. The constructor takes the row's.
    static void addKinds();
    SoundServer();
    ~SoundServer();

    // Knobs: start() after signal(SIGKILL) is a restart; SIGSTOP freezes, SIGCONT thaws.
    void start();
    void signal(int number);

    // Plays a sine of that peak, half a minute long, as the program that `options` may say more of.
    QProcess& play(const QString& program, float peak, const QString& options = {});

    // Runs pactl with these space-separated arguments and returns what it prints.
    QString control(const QString& arguments);

    // The number to unload it by.
    QString addSink(const QString& name);
    // A microphone of that sample format, which hears a sine of peak 0.5.
    QString addMicrophone(const QString& name, const QString& format = u"s16le"_s, int rate = 48000,
                          int channels = 1);

    // Ends the recording streams of programs; their devices stay.
    void killStreams();

private:
    QProcess& run(const QString& command);

    Kind kind;
    QTemporaryDir home;
    QProcess server;
    std::vector<std::unique_ptr<QProcess>> programs;
};

} // namespace qn::testing
