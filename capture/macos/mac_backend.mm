#include "capture/capture_backend.h"
#include "capture/macos/aggregate_device.h"
#include "capture/macos/helper_process.h"
#include "capture/macos/io_procedure.h"
#include "capture/macos/output_devices.h"
#include "capture/macos/process_tap.h"
#include "capture/macos/running_applications.h"
#include "capture/macos/sample_conversion.h"
#include "capture/qt_microphone.h"

#include <QSet>
#include <QTimer>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

QString coreAudioError(OSStatus status) {
    return u"Ошибка Core Audio (%1). Проверьте разрешение на запись системного звука в настройках macOS."_s
        .arg(status);
}

constexpr int kRebuildsPerFormat = 3;

bool isSameFormat(const AudioStreamBasicDescription& a, const AudioStreamBasicDescription& b) {
    return a.mSampleRate == b.mSampleRate && a.mFormatID == b.mFormatID &&
           a.mFormatFlags == b.mFormatFlags && a.mChannelsPerFrame == b.mChannelsPerFrame &&
           a.mBitsPerChannel == b.mBitsPerChannel;
}

// Captures with a process tap inside a private aggregate device, on which an IO procedure runs. The
// three exist from start to stop. The platform asks for permission to record system audio when the
// tap is created.
class MacBackend : public CaptureBackend {
public:
    MacBackend();
    ~MacBackend() override { MacBackend::stop(); }
    Q_DISABLE_COPY_MOVE(MacBackend)

    Catalog catalog() const override;
    bool start(const Selection& selection, const QString& source, QString& error) override;
    void stop() override;

private:
    // The steps of start. If one returns false, `error` is set and stop must clean up.
    bool open(QString& error);
    bool openTap(QString& error);
    bool openAggregateDevice(QString& error);
    bool runIoProcedure(QString& error);

    QSet<AudioObjectID> processObjects() const;
    bool readTapFormat(AudioStreamBasicDescription& format) const;
    void followChanges();

    SourceKind kind = SourceKind::System; // of the last start, like selectionId
    QString selectionId;
    QString sourceId;              // captured now: device UID or bundle identifier
    QSet<AudioObjectID> processes; // those in the tap, when an application is captured
    QTimer watchTimer{this};
    OwnedTap tapId;
    OwnedAggregate aggregateId;
    OwnedIoProcedure ioProcId;
    AudioStreamBasicDescription tapFormat = {};  // of the blocks, as reported when the tap opened
    AudioStreamBasicDescription lastFormat = {}; // as the tap reported it last
    int rebuildsLeft = 0;                        // allowed until lastFormat changes
};

MacBackend::MacBackend() {
    watchTimer.setInterval(1000);
    connect(&watchTimer, &QTimer::timeout, this, [this] { followChanges(); });
}

Catalog MacBackend::catalog() const {
    @autoreleasepool {
        Catalog catalog;
        listOutputDevices(catalog);
        catalog.applications = listRunningApplications();
        return catalog;
    }
}

bool MacBackend::start(const Selection& selection, const QString& source, QString& error) {
    @autoreleasepool {
        stop();
        kind = selection.kind;
        selectionId = selection.id;
        sourceId = source;
        if (!open(error)) {
            stop();
            return false;
        }
        watchTimer.start();
        return true;
    }
}

void MacBackend::stop() {
    watchTimer.stop();
    if (!ioProcId.destroy()) {
        aggregateId.abandon();
        tapId.abandon();
    }
    aggregateId.destroy();
    tapId.destroy();
    sourceId.clear();
    processes.clear();
}

bool MacBackend::open(QString& error) {
    return openTap(error) && openAggregateDevice(error) && runIoProcedure(error);
}

bool MacBackend::openTap(QString& error) {
    CATapDescription* description = nil;
    if (kind == SourceKind::Application) {
        processes = processObjects();
        description = describeProcessTap(processes);
    } else {
        description = describeDeviceTap(sourceId);
    }
    const OSStatus status = logged("AudioHardwareCreateProcessTap", AudioHardwareCreateProcessTap,
                                   description, tapId.receive());
    if (status != noErr) {
        error = coreAudioError(status);
        return false;
    }
    if (!readTapFormat(tapFormat)) {
        error = u"Не удалось получить формат Core Audio tap"_s;
        return false;
    }
    if (tapFormat.mFormatID != kAudioFormatLinearPCM || tapFormat.mChannelsPerFrame < 1 ||
        tapFormat.mChannelsPerFrame > kMaxChannels) {
        error = u"Неизвестный формат системного звука"_s;
        return false;
    }
    return true;
}

bool MacBackend::openAggregateDevice(QString& error) {
    const OwnedString tapUid = readString(tapId.get(), kAudioTapPropertyUID);
    if (!tapUid) {
        error = u"Не удалось получить Core Audio tap UID"_s;
        return false;
    }
    NSDictionary* description = describeAggregateDevice(tapUid.get());
    const OSStatus status =
        logged("AudioHardwareCreateAggregateDevice", AudioHardwareCreateAggregateDevice,
               reinterpret_cast<CFDictionaryRef>(description), aggregateId.receive());
    if (status != noErr)
        error = coreAudioError(status);
    return status == noErr;
}

bool MacBackend::runIoProcedure(QString& error) {
    OSStatus status = ioProcId.create(aggregateId.get(), tapFormat, *this);
    if (status == noErr)
        status = ioProcId.start();
    if (status != noErr)
        error = coreAudioError(status);
    return status == noErr;
}

QSet<AudioObjectID> MacBackend::processObjects() const {
    QSet<AudioObjectID> objects;
    const QList<AudioObjectID> all =
        objectList(kAudioObjectSystemObject, kAudioHardwarePropertyProcessObjectList,
                   kAudioObjectPropertyScopeGlobal);
    for (const AudioObjectID process : all)
        if (belongsToApplication(readString(process, kAudioProcessPropertyBundleID).text(),
                                 sourceId))
            objects.insert(process);
    return objects;
}

// If it returns false, `format` is all zero.
bool MacBackend::readTapFormat(AudioStreamBasicDescription& format) const {
    format = {};
    const bool available =
        readProperty(tapId.get(), kAudioTapPropertyFormat, &format, sizeof format);
    qCDebug(coreAudioLog, "tap: %g Hz, %u channels of %u bits, flags %u", format.mSampleRate,
            format.mChannelsPerFrame, format.mBitsPerChannel, format.mFormatFlags);
    return available;
}

// Rebuilds the tap when helper processes come or go (a browser's tabs, a call's audio process) or
// the device changes its format (a headset's call mode). A new tap may at first have the old
// format, or always report another one once it runs, so the rebuilds for one format are limited.
void MacBackend::followChanges() {
    @autoreleasepool {
        AudioStreamBasicDescription format;
        readTapFormat(format);
        if (!isSameFormat(format, lastFormat))
            rebuildsLeft = kRebuildsPerFormat;
        lastFormat = format;
        const bool formatChanged = !isSameFormat(format, tapFormat) && rebuildsLeft > 0;
        if (!formatChanged && (kind != SourceKind::Application || processObjects() == processes))
            return;
        rebuildsLeft -= formatChanged ? 1 : 0;
        const Selection selection = {kind, selectionId};
        const QString source = sourceId; // a copy, because stop clears the member
        QString error;
        if (!start(selection, source, error))
            Q_EMIT failed(error);
    }
}

} // namespace

std::unique_ptr<CaptureBackend> makeCaptureBackend() {
    return std::make_unique<MacBackend>();
}

std::unique_ptr<MicrophoneBackend> makeMicrophoneBackend() {
    return makeQtMicrophone();
}

} // namespace qn
