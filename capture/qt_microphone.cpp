#include "capture/qt_microphone.h"

#include "capture/microphone_samples.h"

#include <QAudioDevice>
#include <QAudioSource>
#include <QMediaDevices>
#include <QPointer>

#include <algorithm>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 kBufferUs = 100'000;
constexpr qsizetype kLeastBuffer = 4096; // bytes

// The private device that captures the far side on macOS. Only this process sees it; as microphone
// it would record the far side twice.
constexpr auto kOwnDevice = "Quorlin Capture"_L1;

QList<QAudioDevice> microphones() {
    QList<QAudioDevice> devices = QMediaDevices::audioInputs();
    devices.removeIf([](const QAudioDevice& device) { return device.description() == kOwnDevice; });
    return devices;
}

class QtMicrophone final : public MicrophoneBackend {
public:
    ~QtMicrophone() override { close(); }

    MicrophoneList list() const override;
    bool start(const QByteArray& id, QString& error) override;
    void stop() override;

private:
    void open(const QAudioDevice& microphone);
    void read();
    void close();
    void stateChanged(QAudio::State state);

    std::unique_ptr<QAudioSource> source;
    QPointer<QIODevice> device; // owned by the source, which may delete it on failure
    QAudioFormat format;
    QByteArray pending; // bytes of an incomplete frame
};

MicrophoneList QtMicrophone::list() const {
    MicrophoneList found;
    const QByteArray usual = QMediaDevices::defaultAudioInput().id();
    const QList<QAudioDevice> devices = microphones();
    for (const QAudioDevice& microphone : devices) {
        found.entries.append({microphone.id(), microphone.description()});
        if (found.defaultId.isEmpty() || microphone.id() == usual)
            found.defaultId = microphone.id();
    }
    return found;
}

bool QtMicrophone::start(const QByteArray& id, QString& error) {
    stop();
    const QList<QAudioDevice> devices = microphones();
    const auto chosen = std::find_if(devices.rbegin(), devices.rend(),
                                     [&](const QAudioDevice& one) { return one.id() == id; });
    if (chosen != devices.rend())
        open(*chosen);
    if (device)
        return true;
    error = u"Не удалось открыть микрофон"_s;
    return false;
}

void QtMicrophone::open(const QAudioDevice& microphone) {
    format = microphone.preferredFormat();
    source = std::make_unique<QAudioSource>(microphone, format);
    source->setBufferSize(std::max<qsizetype>(format.bytesForDuration(kBufferUs), kLeastBuffer));
    device = source->start();
    // Some versions of Qt return a device even if the microphone could not be opened.
    if (!device || source->error() != QAudio::NoError) {
        close();
        return;
    }
    connect(source.get(), &QAudioSource::stateChanged, this, &QtMicrophone::stateChanged);
    connect(device, &QIODevice::readyRead, this, &QtMicrophone::read);
}

void QtMicrophone::stateChanged(QAudio::State state) {
    if (state == QAudio::StoppedState && source->error() != QAudio::NoError)
        Q_EMIT failed(u"Микрофон отключился"_s);
}

void QtMicrophone::read() {
    pending += device->readAll();
    const AudioBlock captured = takeMicrophoneBlock(pending, format, steadyNowNs());
    if (!captured.samples.isEmpty())
        Q_EMIT block(captured);
}

void QtMicrophone::stop() {
    if (device)
        read();
    close();
}

void QtMicrophone::close() {
    if (source) {
        source->disconnect(this);
        source->stop();
        source.release()->deleteLater(); // this may run inside one of its signals
    }
    device.clear();
    pending.clear();
}

} // namespace

std::unique_ptr<MicrophoneBackend> makeQtMicrophone() {
    return std::make_unique<QtMicrophone>();
}

} // namespace qn
