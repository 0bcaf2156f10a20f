#include "ui/playback/playback_panel.h"
#include "ui/playback/waveform_timeline.h"
#include "ui/window.h"

#include <QAudioDevice>
#include <QLibraryInfo>
#include <QMediaDevices>
#include <QPushButton>
#include <QStatusBar>
#include <QUrl>
#include <QVersionNumber>

#include <algorithm>
#include <limits>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kErrorShownMs = 15000;
constexpr qint64 kSkipMs = 10000;

bool isQt64WithFfmpeg() {
    return QLibraryInfo::version() < QVersionNumber(6, 5) &&
           qEnvironmentVariable("QT_MEDIA_BACKEND") == "ffmpeg"_L1;
}

int sliderValue(qint64 ms) {
    return static_cast<int>(std::min<qint64>(ms, std::numeric_limits<int>::max()));
}

} // namespace

void Window::connectPlayer() {
    player.setAudioOutput(&audioOutput);
    connect(&player, &QMediaPlayer::positionChanged, this, &Window::showPosition);
    connect(&player, &QMediaPlayer::durationChanged, this, &Window::showDuration);
    connect(&player, &QMediaPlayer::playbackStateChanged, this, &Window::updatePlaybackControls);
    connect(&player, &QMediaPlayer::mediaStatusChanged, this, &Window::updatePlaybackControls);
    connect(&player, &QMediaPlayer::seekableChanged, this, &Window::updatePlaybackControls);
    connect(&player, &QMediaPlayer::errorOccurred, this,
            [this](QMediaPlayer::Error, const QString& text) {
                statusBar()->showMessage(u"Не удалось воспроизвести: "_s + text, kErrorShownMs);
                // A broken file would go on "playing". Queued, because this is a signal of the
                // player.
                QMetaObject::invokeMethod(&player, &QMediaPlayer::stop, Qt::QueuedConnection);
            });
    connect(waveform, &QSlider::sliderMoved, this,
            [this](int value) { playbackPanel->showPosition(value, player.duration()); });
    connect(waveform, &QSlider::valueChanged, this, [this](int value) {
        if (waveform->isEnabled() && !waveform->isSliderDown())
            player.setPosition(value);
    });
    connect(playbackPanel->playButton, &QPushButton::clicked, this, &Window::playSelected);
    connect(playbackPanel->pauseButton, &QPushButton::clicked, &player, &QMediaPlayer::pause);
    connect(playbackPanel->backButton, &QPushButton::clicked, this,
            [this] { seekPlayback(-kSkipMs); });
    connect(playbackPanel->forwardButton, &QPushButton::clicked, this,
            [this] { seekPlayback(kSkipMs); });
}

// An empty path takes the file away from the player.
void Window::setPlayerSource(const QString& path) {
    const QUrl url = path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
    if (player.source() == url)
        return;
    player.stop();
    loadPlayer(url);
    const QSignalBlocker blocker(waveform);
    waveform->setValue(0);
}

// Qt 6.4's FFmpeg back end can't open a path with non-ASCII characters; such a file is handed over
// as a device. Only such a file, because that back end leaks 32 KiB per device.
void Window::loadPlayer(const QUrl& url) {
    player.setSource({});
    showDuration(0); // the back end does not report it, and a file without audio has no other
    playedFile.close();
    const QString path = url.toLocalFile();
    if (path.isEmpty())
        return;
    const bool isAscii = std::all_of(path.cbegin(), path.cend(),
                                     [](QChar letter) { return letter.unicode() < 0x80; });
    playedFile.setFileName(path);
    if (isQt64WithFfmpeg() && !isAscii && playedFile.open(QIODevice::ReadOnly))
        player.setSourceDevice(&playedFile, url);
    else
        player.setSource(url);
}

void Window::showPosition(qint64 positionMs) {
    if (waveform->isSliderDown())
        return;
    const QSignalBlocker blocker(waveform);
    waveform->setValue(sliderValue(positionMs));
    playbackPanel->showPosition(positionMs, player.duration());
}

void Window::showDuration(qint64 durationMs) {
    const QSignalBlocker blocker(waveform);
    waveform->setMaximum(sliderValue(durationMs));
    playbackPanel->showPosition(player.position(), durationMs);
    updatePlaybackControls();
}

void Window::playSelected() {
    const Recording* recording = selected();
    if (!recording || !playbackPanel->playButton->isEnabled())
        return;
    // This back end crashes without an output device.
    if (isQt64WithFfmpeg() && QMediaDevices::defaultAudioOutput().isNull()) {
        statusBar()->showMessage(u"Не удалось воспроизвести: нет устройства вывода звука"_s,
                                 kErrorShownMs);
        return;
    }
    audioOutput.setDevice(QMediaDevices::defaultAudioOutput());
    const QUrl url = QUrl::fromLocalFile(recording->path);
    if (player.source() != url)
        loadPlayer(url);
    if (player.mediaStatus() == QMediaPlayer::EndOfMedia)
        player.setPosition(0);
    player.play();
}

void Window::togglePlayback() {
    if (player.playbackState() == QMediaPlayer::PlayingState)
        player.pause();
    else
        playSelected();
}

void Window::seekPlayback(qint64 deltaMs) {
    if (waveform->isEnabled())
        player.setPosition(std::clamp<qint64>(player.position() + deltaMs, 0,
                                              std::max<qint64>(player.duration(), 0)));
}

void Window::updatePlaybackControls() {
    const Recording* recording = selected();
    const PlayerFacts facts{.loaded = recording &&
                                      player.source() == QUrl::fromLocalFile(recording->path),
                            .playing = player.playbackState() == QMediaPlayer::PlayingState,
                            .seekable = player.isSeekable(),
                            .hasDuration = player.duration() > 0};
    const PlaybackRules rules = playbackRules(selectionFacts(), facts);
    playbackPanel->apply(rules);
    waveform->setEnabled(rules.seek);
}

} // namespace qn
