#include "capture/capture_backend.h"

#include "capture/linux/application_capture.h"
#include "capture/linux/device_capture.h"
#include "capture/linux/pulse_catalog.h"
#include "capture/linux/pulse_connection.h"

#include <QCoreApplication>

#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr auto kServerLost = u"Звуковой сервер отключился — ожидаем подключения";
constexpr auto kDeviceLost = u"Устройство вывода отключилось — ожидаем подключения";

QString ownProcessId() {
    return QString::number(QCoreApplication::applicationPid());
}

class LinuxBackend final : public CaptureBackend {
public:
    ~LinuxBackend() override { LinuxBackend::stop(); }

    Catalog catalog() const override;
    bool start(const Selection& selection, const QString& sourceId, QString& error) override;
    void stop() override;

private:
    QString open(const Selection& selection, const QString& sourceId);
    QString openApplication(const QString& id);
    QString openDevice(const QString& name, PulseConnection::Clock::time_point deadline);
    BlockReceiver emitBlock() {
        return [this](const AudioBlock& captured) { Q_EMIT block(captured); };
    }
    void release();
    void connectionLost();
    void connectionRefreshed();
    void fail(QStringView message);

    std::shared_ptr<PulseConnection> connection = PulseConnection::ofThisThread();
    // At most one of the two exists. Used under the connection's lock.
    std::unique_ptr<DeviceCapture> device;
    std::unique_ptr<ApplicationCapture> application; // until the connection is lost
    bool isCapturing = false;                        // from a successful start to stop or failure
    PulseConnection::Watch watch{*connection, [this] { connectionLost(); },
                                 [this] { connectionRefreshed(); }};
};

Catalog LinuxBackend::catalog() const {
    const PulseConnection::Lock lock(*connection);
    connection->refresh(connection->answerDeadline());
    return catalogOf(connection->snapshot(), ownProcessId());
}

bool LinuxBackend::start(const Selection& selection, const QString& sourceId, QString& error) {
    stop();
    const PulseConnection::Lock lock(*connection);
    error = open(selection, sourceId);
    isCapturing = error.isEmpty();
    if (!isCapturing)
        release();
    return isCapturing;
}

// Returns a message for the user, empty on success.
QString LinuxBackend::open(const Selection& selection, const QString& sourceId) {
    const auto deadline = connection->openDeadline();
    if (!connection->refresh(deadline)) {
        return connection->unresponsive() ? u"Звуковой сервер не отвечает — повторяем попытку"_s
                                          : u"Звуковой сервер недоступен — ожидаем подключения"_s;
    }
    if (selection.kind == SourceKind::Application)
        return openApplication(sourceId);
    return openDevice(sourceId, deadline);
}

QString LinuxBackend::openApplication(const QString& id) {
    if (inputsOf(connection->snapshot(), id, ownProcessId()).isEmpty())
        return u"Ожидаем аудиопоток выбранного приложения"_s;
    application =
        std::make_unique<ApplicationCapture>(*connection, id, ownProcessId(), emitBlock());
    return {};
}

QString LinuxBackend::openDevice(const QString& name, PulseConnection::Clock::time_point deadline) {
    const DeviceFacts* sink = findDevice(connection->snapshot().sinks, name);
    if (!sink)
        return u"Устройство вывода недоступно — ожидаем подключения"_s;
    device = std::make_unique<DeviceCapture>(*connection, *sink, emitBlock(), [this] {
        fail(device->hasLostServer() ? kServerLost : kDeviceLost);
    });
    if (device->waitUntilRunning(deadline))
        return {};
    return u"Не удалось подключиться к устройству вывода — повторяем попытку"_s;
}

void LinuxBackend::stop() {
    const PulseConnection::Lock lock(*connection);
    release();
    isCapturing = false;
}

void LinuxBackend::release() {
    device.reset();
    application.reset();
}

void LinuxBackend::connectionLost() {
    application.reset();
    fail(kServerLost);
}

void LinuxBackend::connectionRefreshed() {
    if (device && device->isReplaced(connection->snapshot().sinks))
        fail(kDeviceLost);
}

void LinuxBackend::fail(QStringView message) {
    if (std::exchange(isCapturing, false))
        Q_EMIT failed(message.toString());
}

} // namespace

std::unique_ptr<CaptureBackend> makeCaptureBackend() {
    return std::make_unique<LinuxBackend>();
}

} // namespace qn
