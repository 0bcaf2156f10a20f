#include "tests/support/fake_backend.h"
#include "tests/support/tone.h"

#include <algorithm>
#include <thread>

namespace qn::testing {

namespace {

class FakeBackend : public CaptureBackend {
public:
    FakeBackend() { ++FakePlatform::instance().alive; }
    ~FakeBackend() override {
        FakeBackend::stop();
        --FakePlatform::instance().alive;
    }

    Catalog catalog() const override { return FakePlatform::instance().catalog; }

    bool start(const Selection&, const QString& sourceId, QString& error) override {
        stop();
        std::this_thread::sleep_for(FakePlatform::instance().startTakes);
        error = FakePlatform::instance().startError;
        if (!error.isEmpty())
            return false;
        FakePlatform::instance().started.append(sourceId);
        FakePlatform::instance().capturing.append(this);
        return true;
    }

    void stop() override { FakePlatform::instance().capturing.removeOne(this); }
};

class FakeMicrophone : public MicrophoneBackend {
public:
    FakeMicrophone() { ++FakePlatform::instance().alive; }
    ~FakeMicrophone() override {
        FakePlatform::instance().listening.removeOne(this);
        --FakePlatform::instance().alive;
    }

    MicrophoneList list() const override { return FakePlatform::instance().microphones; }

    bool start(const QByteArray& id, QString& error) override {
        stop();
        error = FakePlatform::instance().startError;
        if (!error.isEmpty())
            return false;
        FakePlatform::instance().started.append(QString::fromUtf8(id));
        FakePlatform::instance().listening.append(this);
        return true;
    }

    void stop() override {
        if (!FakePlatform::instance().listening.removeOne(this))
            return;
        AudioBlock held;
        held.samples.fill(FakePlatform::instance().microphoneLast, 480);
        held.timestampNs = steadyNowNs() - 10'000'000;
        Q_EMIT block(held);
    }
};

} // namespace

FakePlatform& FakePlatform::instance() {
    static FakePlatform platform;
    return platform;
}

void playTone() {
    static qint64 end = 0; // of the tone so far, as the steady clock counts
    const std::chrono::nanoseconds delay = FakePlatform::instance().delay;
    const qint64 now = steadyNowNs() - delay.count();
    AudioBlock block;
    block.timestampNs = std::max(end, now - 1'000'000'000);
    end = now;
    block.samples = sine(458, 48000, 0.5F, (end - block.timestampNs) * 48 / 1'000'000);
    for (CaptureBackend* backend : QList(FakePlatform::instance().capturing))
        Q_EMIT backend->block(block);
    block.samples.fill(0);
    for (MicrophoneBackend* microphone : QList(FakePlatform::instance().listening)) {
        if (FakePlatform::instance().microphoneDelivers)
            Q_EMIT microphone->block(block);
    }
}

void breakDown(const QString& message) {
    for (CaptureBackend* backend : QList(FakePlatform::instance().capturing)) {
        backend->stop();
        Q_EMIT backend->failed(message);
    }
}

} // namespace qn::testing

std::unique_ptr<qn::CaptureBackend> qn::makeCaptureBackend() {
    return std::make_unique<testing::FakeBackend>();
}

std::unique_ptr<qn::MicrophoneBackend> qn::makeMicrophoneBackend() {
    return std::make_unique<testing::FakeMicrophone>();
}
