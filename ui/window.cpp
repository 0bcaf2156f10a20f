#include "ui/window.h"

#include "core/version.h"
#include "engine/recorder_worker.h"
#include "export/stale_files.h"
#include "storage/settings_store.h"
#include "ui/common/layouts.h"
#include "ui/common/shortcuts.h"
#include "ui/library/action_bar.h"
#include "ui/library/export_bar.h"
#include "ui/library/filter_bar.h"
#include "ui/library/library_writer.h"
#include "ui/library/recording_table.h"
#include "ui/playback/playback_panel.h"
#include "ui/playback/waveform_timeline.h"
#include "ui/recording/recording_panel.h"
#include "ui/settings/settings_dialog.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QStatusBar>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>
#include <initializer_list>

namespace qn {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr QSize kInitialSize(1140, 850);
constexpr QSize kSmallestSize(840, 680);
constexpr QMargins kMargins(22, 18, 22, 18);
constexpr int kDetailsHeight = 110; // px
constexpr int kButtonHeight = 28;   // px
constexpr auto kCatalogInterval = 3000ms;
constexpr float kPlaybackVolume = 0.8F;

} // namespace

Window::Window(const QString& dataDirectory)
    : library(std::make_unique<Library>(QDir(dataDirectory).filePath(u"library.sqlite3"_s))),
      writer(std::make_unique<LibraryWriter>(*library)),
      backend(makeCaptureBackend()),
      microphones(makeMicrophoneBackend()),
      settings(loadSettings()) {
    library->markInterrupted();
    setWindowTitle(u"Quorlin"_s);
    resize(kInitialSize);
    setMinimumSize(kSmallestSize);
    buildUi();
    audioOutput.setVolume(kPlaybackVolume);
    connectPlayer();
    connectControls();
    adoptFinishedFiles();
    removeStaleFiles(settings.directory);
    connectWorker();
    bindShortcuts();
    auto* catalogTimer = new QTimer(this);
    connect(catalogTimer, &QTimer::timeout, this, [this] {
        if (isResting(state))
            refreshCatalog();
    });
    catalogTimer->start(kCatalogInterval);
    refreshCatalog();
    refreshLibrary();
    stateChanged(State::Idle);
    tellInterrupted();
    recordingPanel->recordButton->setFocus();
}

Window::~Window() {
    closing = true;
    exportJob.disconnect(this);
    player.disconnect(this);
    exportJob.cancel();
    if (workerThread.isRunning()) {
        QMetaObject::invokeMethod(worker, &RecorderWorker::stop, Qt::BlockingQueuedConnection);
        // Handles the signals that the worker emitted at its end: they update the library.
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall);
        workerThread.quit();
        workerThread.wait();
    }
    writer->flush();
}

bool Window::event(QEvent* event) {
    const bool handled = QMainWindow::event(event);
    // Larger fonts and the export bar may need more than the smallest size.
    if (event->type() == QEvent::LayoutRequest)
        setMinimumSize(
            minimumSizeHint().boundedTo(screen()->availableSize()).expandedTo(kSmallestSize));
    if (event->type() == QEvent::PaletteChange)
        recolour();
    return handled;
}

void Window::recolour() {
    for (QLabel* label : findChildren<QLabel*>()) {
        if (!label->styleSheet().isEmpty())
            label->setStyleSheet(label->styleSheet()); // so that it takes on the new colours
    }
}

void Window::buildUi() {
    settingsDialog = new SettingsDialog(settings, this);
    recordingPanel = new RecordingPanel;
    recordingPanel->setMicrophoneUsed(settings.microphoneEnabled);
    filterBar = new FilterBar;
    table = new RecordingTable;
    actionBar = new ActionBar;
    waveform = new WaveformTimeline;
    waveform->setObjectName(u"playbackSeek"_s);
    playbackPanel = new PlaybackPanel;
    exportBar = new ExportBar;
    details = new QTextEdit;
    details->setReadOnly(true);
    details->setMaximumHeight(kDetailsHeight);
    details->setTabChangesFocus(true);
    details->setAccessibleName(u"Сведения о записи"_s);
    details->verticalScrollBar()->setAccessibleName(u"Прокрутка сведений"_s);
    details->setPlaceholderText(
        u"Выберите созвон для просмотра времени, файла и переключений источников"_s);

    auto* central = new QWidget;
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(kMargins);
    layout->addWidget(buildHeader());
    for (QWidget* widget :
         std::initializer_list<QWidget*>{recordingPanel, filterBar, table, actionBar, waveform,
                                         playbackPanel, exportBar, details})
        layout->addWidget(widget);
    setCentralWidget(central);
    freeSpace = new QLabel;
    statusBar()->addPermanentWidget(freeSpace); // shows the bar now, so that the table won't jump
    buildMenu();
}

QWidget* Window::buildHeader() {
    auto* name = new QLabel(u"Quorlin"_s);
    name->setStyleSheet(u"font-size:25px;font-weight:650"_s);
    auto* settingsButton = tallButton(u"Настройки"_s, kButtonHeight);
    connect(settingsButton, &QPushButton::clicked, this, [this] {
        settingsDialog->show();
        settingsDialog->raise();
    });
    bindShortcut(this, preferencesKeys(), settingsButton);
    auto* header = rowOf({name, settingsButton});
    addStretch(header, 1);
    return header;
}

void Window::buildMenu() {
    menuBar()->setAccessibleName(u"Меню"_s);
    const auto about = [this] {
        QMessageBox::about(
            this, u"Quorlin"_s,
            u"Quorlin %1\nЗапись созвонов и локальная библиотека аудио."_s.arg(version()));
    };
    // Queued, so that assistive technology that triggers it need not wait for the box to close.
    connect(menuBar()->addMenu(u"Справка"_s)->addAction(u"О программе"_s), &QAction::triggered,
            this, about, Qt::QueuedConnection);
}

void Window::connectControls() {
    connect(settingsDialog, &SettingsDialog::sourceKindChanged, this, &Window::changeSourceKind);
    connect(settingsDialog, &SettingsDialog::changed, this, &Window::savePreferences);
    connect(recordingPanel->recordButton, &QPushButton::clicked, this, &Window::startRecording);
    connect(recordingPanel->pauseButton, &QPushButton::clicked, this, &Window::togglePause);
    connect(recordingPanel->stopButton, &QPushButton::clicked, this, &Window::stopRecording);
    connect(filterBar, &FilterBar::changed, this, &Window::refreshLibrary);
    connect(table, &QTableWidget::itemSelectionChanged, this, &Window::selectionChanged);
    connect(table, &QTableWidget::cellDoubleClicked, this, &Window::playSelected);
    connect(table, &QWidget::customContextMenuRequested, this, &Window::showContextMenu);
    connect(actionBar->exportButton, &QPushButton::clicked, this, &Window::exportSelected);
    connect(actionBar->recoverButton, &QPushButton::clicked, this, &Window::recoverSelected);
    connect(actionBar->renameButton, &QPushButton::clicked, this, &Window::renameSelected);
    connect(actionBar->folderButton, &QPushButton::clicked, this, &Window::openFolder);
    connect(actionBar->removeButton, &QPushButton::clicked, this, &Window::deleteSelected);
    connect(exportBar->cancelButton, &QPushButton::clicked, &exportJob, &ExportJob::cancel);
    connect(&exportJob, &ExportJob::progress, exportBar, &ExportBar::setProgress);
    connect(&exportJob, &ExportJob::finished, this, &Window::exportFinished);
    connect(writer.get(), &LibraryWriter::refused, this, &Window::libraryRefused);
    connect(writer.get(), &LibraryWriter::caughtUp, this, &Window::refreshLibrary);
}

void Window::bindShortcuts() {
    QShortcut* const everywhere[] = {
        bindShortcut(this, {u"Ctrl+R"_s}, recordingPanel->recordButton),
        bindShortcut(this, {u"Ctrl+P"_s}, recordingPanel->pauseButton),
        bindShortcut(this, {u"Ctrl+."_s, u"Ctrl+Ю"_s}, recordingPanel->stopButton),
        bindShortcut(this, quitKeys(), [this] { requestClose(); }),
    };
    for (QShortcut* shortcut : everywhere)
        shortcut->setContext(Qt::ApplicationShortcut); // so that it works in the settings too
    const QKeySequence exportKey(u"Ctrl+E"_s);
    bindShortcut(this, {exportKey}, actionBar->exportButton);
    for (QLineEdit* field : findChildren<QLineEdit*>())
        yieldKey(field, exportKey); // on X11 it would move the cursor to the end
    bindShortcut(this, {u"F2"_s}, actionBar->renameButton);
    bindShortcut(this, {u"Ctrl+Left"_s}, playbackPanel->backButton)->setAutoRepeat(true);
    bindShortcut(this, {u"Ctrl+Right"_s}, playbackPanel->forwardButton)->setAutoRepeat(true);
    bindShortcut(this, findKeys(), [this] { filterBar->focusSearch(); });
    actionBar->removeButton->setToolTip(keyText(deleteKeys().first()));
    playbackPanel->pauseButton->setToolTip(keyText(Qt::Key_Space));
    bindLocalShortcut(table, deleteKeys(), [this] { deleteSelected(); });
    bindLocalShortcut(table, {Qt::Key_Space}, [this] { togglePlayback(); });
    bindLocalShortcut(table, {Qt::Key_Return, Qt::Key_Enter}, [this] { playSelected(); });
    bindLocalShortcut(waveform, {Qt::Key_Space}, [this] { togglePlayback(); });
}

void Window::refreshCatalog() {
    const QScopedValueRollback refilling(populating, true);
    catalog = backend->catalog();
    settingsDialog->showSources(settings, catalog, microphones->list().entries);
}

void Window::changeSourceKind(int kind) {
    if (populating)
        return;
    settings.sourceKind = kind;
    settings.sourceId.clear();
    refreshCatalog();
    savePreferences();
}

void Window::savePreferences() {
    if (populating)
        return;
    settings = settingsDialog->edited();
    saveSettings(settings);
    recordingPanel->setMicrophoneUsed(settings.microphoneEnabled);
}

} // namespace qn
