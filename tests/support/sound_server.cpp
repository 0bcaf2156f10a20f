#include "tests/support/sound_server.h"
#include "tests/support/files.h"
#include "tests/support/tone.h"

#include <csignal>
#include <unistd.h>

namespace qn::testing {

void SoundServer::addKinds() {
    QTest::addColumn<int>("row");
    for (const auto& [program, kind] :
         {std::pair("pulseaudio", PulseAudio), {"pipewire-pulse", PipeWire}}) {
        if (QStandardPaths::findExecutable(QString::fromLatin1(program)).isEmpty())
            qWarning("%s is not installed: its half is skipped", program);
        else
            QTest::newRow(program) << int(kind);
    }
}

SoundServer::SoundServer() {
    QFETCH_GLOBAL(int, row);
    kind = Kind(row);
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    qputenv("HOME", home.path().toUtf8());
    qunsetenv("PULSE_SERVER");
    server.setChildProcessModifier([] { setpgid(0, 0); });
    start();
}

SoundServer::~SoundServer() {
    for (const auto& player : programs) {
        player->kill();
        player->waitForFinished();
    }
    signal(SIGKILL);
}

void SoundServer::start() {
    constexpr const char* kScripts[] = {
        "exec pulseaudio -n --daemonize=no --exit-idle-time=-1 -L module-native-protocol-unix",
        "exec dbus-run-session sh -c 'pipewire & while ! [ -S $XDG_RUNTIME_DIR/pipewire-0 ]; do"
        " sleep 0.02; done; XDG_CONFIG_HOME=" PRIVATE_SOUND
        " wireplumber & pipewire-pulse & wait'"};
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
    const QString path = home.filePath(QString::number(programs.size()));
    const QList<float> tone = sine(458, 48000, peak, 1'440'000);
    write(path, {reinterpret_cast<const char*>(tone.data()), tone.size() * 4});
    const QString command =
        u"--playback --raw --format=float32ne --rate=48000 --channels=1 --latency-msec=50 %1 "
        "--property=application.process.binary=%2 --property=application.name=%2 %3"_s;
    return run(u"pacat "_s + command.arg(path, program, options));
}

QProcess& SoundServer::run(const QString& command) {
    QStringList words = command.split(u' ', Qt::SkipEmptyParts);
    auto& program = programs.emplace_back(std::make_unique<QProcess>());
    program->start(words.takeFirst(), words);
    return *program;
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

QString SoundServer::addMicrophone(const QString& name, const QString& format, int rate,
                                   int channels) {
    const QString feed = name + QString::number(programs.size());
    QString module = u"load-module module-%1 source_name=%2 format=%3 rate=%4 channels=%5 "_s;
    module = module.arg(kind == PulseAudio ? u"remap-source"_s : u"pipe-source"_s, name, format)
                 .arg(rate)
                 .arg(channels);
    if (kind == PulseAudio) { // whose pipe source takes frames apart
        addSink(feed);
        play(feed, 0.5F, u"--device="_s + feed);
        return control(module + u"master=%1.monitor"_s.arg(feed));
    }
    const QString pipe = home.filePath(feed);
    QString number = control(module + u"file="_s + pipe);
    const bool isPadded = format == u"s24-32le"_s; // in the lower three bytes of four
    const QString sine = isPadded ? u"0.5/256*sin(2880*t)"_s : u"0.5*sin(2880*t)"_s;
    run(u"ffmpeg -v error -f lavfi -i aevalsrc=%1:s=%2 -f %3 -flush_packets 1 -y %4"_s
            .arg(QStringList(channels, sine).join(u'|'))
            .arg(rate)
            .arg(isPadded ? u"s32le"_s : format, pipe));
    return number;
}

void SoundServer::killStreams() {
    const QString key = kind == PulseAudio ? u"Source Output #(\\d+)\n\tDriver: protocol"_s
                                           : u"object\\.id = \"(\\d+)"_s;
    auto streams = QRegularExpression(key).globalMatch(control(u"list source-outputs"_s));
    while (streams.hasNext())
        run((kind == PulseAudio ? u"pacmd kill-source-output "_s : u"pw-cli destroy "_s) +
            streams.next().captured(1))
            .waitForFinished();
}

} // namespace qn::testing
