#include "tests/support/sound_server.h"

#include <QFile>
#include <QTest>

#include <cmath>
#include <csignal>
#include <unistd.h>

namespace qn::testing {

SoundServer::SoundServer(Kind chosenKind) : kind(chosenKind) {
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    qputenv("HOME", home.path().toUtf8());
    for (const char* name : {"PULSE_SERVER", "PULSE_SINK", "PULSE_SOURCE", "PULSE_LATENCY_MSEC"})
        qunsetenv(name);
    server.setChildProcessModifier([] { setpgid(0, 0); });
    server.setProcessChannelMode(QProcess::MergedChannels);
    start();
}

SoundServer::~SoundServer() {
    for (const auto& player : players) {
        player->kill();
        player->waitForFinished();
    }
    kill();
}

void SoundServer::start() {
    if (kind == Kind::PulseAudio) {
        server.start(u"pulseaudio"_s, {u"-n"_s, u"--daemonize=no"_s, u"--exit-idle-time=-1"_s,
                                       u"-L"_s, u"module-native-protocol-unix"_s});
    } else {
        server.start(u"dbus-run-session"_s,
                     {u"--"_s, u"sh"_s, u"-c"_s,
                      u"pipewire & until [ -S $XDG_RUNTIME_DIR/pipewire-0 ]; do sleep 0.02; done;"
                      " wireplumber & pipewire-pulse & wait"_s});
    }
    const auto answers = [this] { return control({u"info"_s}).contains(u"Default Sink"_s); };
    if (!QTest::qWaitFor(answers, 10000))
        qFatal("no sound server starts: %s", server.readAll().constData());
    addSink(u"speakers"_s);
    addSink(u"feed"_s);
    control({u"load-module"_s, u"module-remap-source"_s, u"master=feed.monitor"_s,
             u"source_name=mic"_s});
    const auto isDefault = [this] {
        control({u"set-default-sink"_s, u"speakers"_s});
        return control({u"info"_s}).contains(u"Default Sink: speakers"_s);
    };
    QTRY_VERIFY_WITH_TIMEOUT(isDefault(), 10000);
}

void SoundServer::kill() {
    const auto group = static_cast<pid_t>(server.processId());
    if (group == 0)
        return;
    ::kill(-group, SIGKILL);
    server.waitForFinished();
    QTRY_COMPARE_WITH_TIMEOUT(::kill(-group, 0), -1, 5000);
}

void SoundServer::freeze() {
    signalAll(SIGSTOP);
}

void SoundServer::thaw() {
    signalAll(SIGCONT);
}

void SoundServer::signalAll(int signal) {
    ::kill(-static_cast<pid_t>(server.processId()), signal);
}

QProcess& SoundServer::play(const QString& program, float peak, const QStringList& options) {
    QFile tone(home.filePath(QString::number(players.size())));
    if (!tone.open(QIODevice::WriteOnly))
        qFatal("no tone can be written");
    for (int i = 0; i < 48000 * 30; ++i) {
        const float sample = peak * std::sin(0.06F * static_cast<float>(i));
        tone.write(reinterpret_cast<const char*>(&sample), sizeof sample);
    }
    auto& player = players.emplace_back(std::make_unique<QProcess>());
    player->start(u"pacat"_s, QStringList{u"--playback"_s, u"--raw"_s, u"--format=float32ne"_s,
                                          u"--rate=48000"_s, u"--channels=1"_s,
                                          u"--latency-msec=50"_s, tone.fileName(),
                                          u"--property=application.process.binary="_s + program,
                                          u"--property=application.name="_s + program} +
                                  options);
    return *player;
}

QString SoundServer::control(const QStringList& arguments) {
    QProcess pactl;
    pactl.start(u"pactl"_s, arguments);
    pactl.waitForFinished(5000);
    return QString::fromUtf8(pactl.readAllStandardOutput()).trimmed();
}

QString SoundServer::addSink(const QString& name) {
    // With rewinds, PulseAudio's null sink renders up to 2 s ahead; the microphone needs that.
    return control({u"load-module"_s, u"module-null-sink"_s, u"rate=48000"_s,
                    u"sink_name="_s + name, u"norewinds=%1"_s.arg(name == u"feed"_s ? 0 : 1),
                    u"sink_properties=device.description="_s + name.toUpper()});
}

} // namespace qn::testing
