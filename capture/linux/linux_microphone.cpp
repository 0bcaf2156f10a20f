#include "capture/linux/device_capture.h"
#include "capture/linux/pulse_catalog.h"
#include "capture/linux/pulse_connection.h"
#include "capture/microphone.h"

#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

// Records the sound server's sources directly rather than through Qt: the server converts the
// samples, and a source that disappears ends the capture instead of being replaced by another.
class LinuxMicrophone final : public MicrophoneBackend {
public:
    ~LinuxMicrophone() override { release(); }

    MicrophoneList list() const override;
    bool start(const QByteArray& id, QString& error) override;
    void stop() override;

private:
    bool open(const QString& name);
    void release();
    void fail();

    std::shared_ptr<PulseConnection> connection = PulseConnection::ofThisThread();
    // The rest is used under the connection's lock.
    std::unique_ptr<DeviceCapture> device;
    bool isCapturing = false; // from a successful start to stop or failure
    PulseConnection::Watch watch{*connection, [] {},
                                 [this] {
                                     if (device &&
                                         device->isReplaced(connection->snapshot().sources))
                                         fail();
                                 }};
};

MicrophoneList LinuxMicrophone::list() const {
    const PulseConnection::Lock lock(*connection);
    connection->refresh(connection->answerDeadline());
    return microphonesOf(connection->snapshot());
}

bool LinuxMicrophone::start(const QByteArray& id, QString& error) {
    stop();
    const PulseConnection::Lock lock(*connection);
    isCapturing = open(QString::fromUtf8(id));
    if (isCapturing)
        return true;
    device.reset();
    error = u"Не удалось открыть микрофон"_s;
    return false;
}

bool LinuxMicrophone::open(const QString& name) {
    const auto deadline = connection->openDeadline();
    if (!connection->refresh(deadline))
        return false;
    const DeviceFacts* source = findDevice(connection->snapshot().sources, name);
    if (!source)
        return false;
    device = std::make_unique<DeviceCapture>(
        *connection, *source, [this](const AudioBlock& captured) { Q_EMIT block(captured); },
        [this] { fail(); });
    return device->waitUntilRunning(deadline);
}

void LinuxMicrophone::stop() {
    const PulseConnection::Lock lock(*connection);
    isCapturing = false;
    const auto closing = std::move(device); // flush may call a receiver that calls stop again
    if (closing)
        closing->flush();
}

void LinuxMicrophone::release() {
    const PulseConnection::Lock lock(*connection);
    device.reset();
}

void LinuxMicrophone::fail() {
    if (std::exchange(isCapturing, false))
        Q_EMIT failed(u"Микрофон отключился"_s);
}

} // namespace

std::unique_ptr<MicrophoneBackend> makeMicrophoneBackend() {
    return std::make_unique<LinuxMicrophone>();
}

} // namespace qn
