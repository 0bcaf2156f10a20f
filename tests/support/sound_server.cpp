#include "tests/support/sound_server.h"

#include <QTest>

#include <cmath>
#include <csignal>
#include <fstream>
#include <unistd.h>

namespace qn::testing {

SoundServer::SoundServer(Kind chosenKind) : kind(chosenKind) {
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    qputenv("HOME", home.path().toUtf8());
    qunsetenv("PULSE_SERVER");
    server.setChildProcessModifier([] { setpgid(0, 0); });
    start();
}

SoundServer::~SoundServer() {
    for (const auto& player : players) {
        player->kill();
        player->waitForFinished();
    }
    signal(SIGKILL);
}

void SoundServer::start() {
    constexpr const char* kScripts[] = {
        "exec pulseaudio -n --daemonize=no --exit-idle-time=-1 -L module-native-protocol-unix",
        "exec dbus-run-session sh -c 'pipewire & while ! [ -S $XDG_RUNTIME_DIR/pipewire-0 ]; do"
        " sleep 0.02; done; wireplumber & pipewire-pulse & wait'"};
    server.start(u"sh"_s, {u"-c"_s, QString::fromUtf8(kScripts[kind])});
    const auto isUp = [this] { return control(u"info"_s).contains(u"Default Sink"_s); };
    if (!QTest::qWaitFor(isUp, 10000))
        qFatal("no sound server starts: %s", server.readAllStandardError().constData());
    addSink(u"speakers"_s);
    QTRY_VERIFY(control(u"set-default-sink speakers"_s).isEmpty() &&
                control(u"info"_s).contains(u"Default Sink: speakers"_s));
}

void SoundServer::signal(int number) {
    const auto group = static_cast<pid_t>(server.processId());
    if (group == 0)
        return;
    ::kill(-group, number);
    if (number == SIGKILL) {
        server.waitForFinished();
        QTRY_COMPARE(::kill(-group, 0), -1);
    }
}

QProcess& SoundServer::play(const QString& program, float peak, const QString& options) {
    const QString path = home.filePath(QString::number(players.size()));
    std::ofstream tone(path.toStdString());
    for (int i = 0; i < 48000 * 30; ++i) {
        const float sample = peak * std::sin(0.06F * static_cast<float>(i));
        tone.write(reinterpret_cast<const char*>(&sample), sizeof sample);
    }
    const QString command =
        u"--playback --raw --format=float32ne --rate=48000 --channels=1 --latency-msec=50 %1 "
        "--property=application.process.binary=%2 --property=application.name=%2 %3"_s;
    auto& player = players.emplace_back(std::make_unique<QProcess>());
    player->start(u"pacat"_s, command.arg(path, program, options).split(u' ', Qt::SkipEmptyParts));
    return *player;
}

QString SoundServer::control(const QString& arguments) {
    QProcess pactl;
    pactl.start(u"pactl"_s, arguments.split(u' '));
    pactl.waitForFinished(5000);
    return QString::fromUtf8(pactl.readAllStandardOutput()).trimmed();
}

QString SoundServer::addSink(const QString& name) {
    // With rewinds PulseAudio renders up to 2 s ahead.
    return control(u"load-module module-null-sink rate=48000 norewinds=1 sink_name="_s + name);
}

} // namespace qn::testing
