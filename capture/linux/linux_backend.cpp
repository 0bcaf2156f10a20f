#include "capture/capture_backend.h"

#include "capture/linux/application_capture.h"
#include "capture/linux/pulse_catalog.h"
#include "capture/linux/pulse_connection.h"
#include "capture/linux/record_stream.h"

#include <QCoreApplication>

#include <utility>

namespace qn {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// How long to wait for the server: altogether less than the 4 s for which the recorder's thread
// may be kept from its work.
constexpr auto kCatalogPatience = 1000ms;
constexpr auto kStartPatience = 1500ms;
constexpr auto kNoPatience = 50ms; // with a server that has just failed to answer

constexpr auto kServerLost = u"Звуковой сервер отключился — ожидаем подключения";
constexpr auto kDeviceLost = u"Устройство вывода отключилось — ожидаем подключения";

QString ownProcessId() {
    return QString::number(QCoreApplication::applicationPid());
}

class LinuxBackend final : public CaptureBackend {
public:
    LinuxBackend() : connection([this] { connectionLost(); }) {}
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
    void fail(QStringView message);
    void deviceChanged();
    PulseConnection::Clock::time_point deadlineAfter(std::chrono::milliseconds patience) const;

    mutable PulseConnection connection;
    // The one that captures, if any. Used under the connection's lock, destroyed when the
    // connection is lost.
    std::unique_ptr<RecordStream> device;
    std::unique_ptr<ApplicationCapture> application;
    bool isCapturing = false; // from a successful start to stop or failure
};

PulseConnection::Clock::time_point
LinuxBackend::deadlineAfter(std::chrono::milliseconds patience) const {
    return PulseConnection::Clock::now() + (connection.unresponsive() ? kNoPatience : patience);
}

Catalog LinuxBackend::catalog() const {
    const PulseConnection::Lock lock(connection);
    connection.refresh(deadlineAfter(kCatalogPatience));
    return catalogOf(connection.snapshot(), ownProcessId());
}

bool LinuxBackend::start(const Selection& selection, const QString& sourceId, QString& error) {
    stop();
    const PulseConnection::Lock lock(connection);
    error = open(selection, sourceId);
    isCapturing = error.isEmpty();
    if (!isCapturing)
        release();
    return isCapturing;
}

// Returns a message when it fails.
QString LinuxBackend::open(const Selection& selection, const QString& sourceId) {
    const auto deadline = deadlineAfter(kStartPatience);
    if (!connection.refresh(deadline)) {
        return connection.unresponsive() ? u"Звуковой сервер не отвечает — повторяем попытку"_s
                                         : u"Звуковой сервер недоступен — ожидаем подключения"_s;
    }
    if (selection.kind == SourceKind::Application)
        return openApplication(sourceId);
    return openDevice(sourceId, deadline);
}

QString LinuxBackend::openApplication(const QString& id) {
    if (inputsOf(connection.snapshot(), id, ownProcessId()).isEmpty())
        return u"Ожидаем аудиопоток выбранного приложения"_s;
    application = std::make_unique<ApplicationCapture>(connection, id, ownProcessId(), emitBlock());
    return {};
}

QString LinuxBackend::openDevice(const QString& name, PulseConnection::Clock::time_point deadline) {
    const SinkFacts* sink = findSink(connection.snapshot(), name);
    if (!sink)
        return u"Устройство вывода недоступно — ожидаем подключения"_s;
    device = std::make_unique<RecordStream>(
        connection.loopApi(), RecordTarget{*sink, PA_INVALID_INDEX, {}},
        RecordStream::Callbacks{emitBlock(), [this] { deviceChanged(); }});
    const auto settled = [this] { return !device || device->isRunning() || device->isBroken(); };
    if (connection.waitFor(settled, deadline) && device && device->isRunning())
        return {};
    return u"Не удалось подключиться к устройству вывода — повторяем попытку"_s;
}

void LinuxBackend::deviceChanged() {
    connection.wake();
    if (device->isBroken())
        fail(device->hasLostServer() ? kServerLost : kDeviceLost);
}

void LinuxBackend::stop() {
    const PulseConnection::Lock lock(connection);
    release();
    isCapturing = false;
}

void LinuxBackend::release() {
    device.reset();
    application.reset();
}

void LinuxBackend::connectionLost() {
    release();
    fail(kServerLost);
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
