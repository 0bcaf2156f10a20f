#include "ui/library/action_bar.h"
#include "ui/library/filter_bar.h"
#include "ui/library/finished_files.h"
#include "ui/library/library_error.h"
#include "ui/library/library_writer.h"
#include "ui/library/recording_table.h"
#include "ui/library/recording_text.h"
#include "ui/playback/waveform_timeline.h"
#include "ui/window.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QJsonArray>
#include <QMenu>
#include <QStatusBar>
#include <QTextEdit>
#include <QUrl>

#include <algorithm>
#include <exception>
#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kMessageShownMs = 15000;

} // namespace

bool Window::tryLibrary(const std::function<void()>& action) {
    try {
        action();
        return true;
    } catch (const std::exception& exception) {
        showLibraryError(QString::fromUtf8(exception.what()));
        return false;
    }
}

void Window::tryLibraryQuietly(const std::function<void()>& action) {
    try {
        action();
        libraryErrorShown = false;
    } catch (const std::exception& exception) {
        libraryRefused(QString::fromUtf8(exception.what()));
    }
}

// The box is shown later, by a queued call: while it is open, anything may change under the caller.
void Window::libraryRefused(const QString& reason) {
    if (!std::exchange(libraryErrorShown, true))
        QMetaObject::invokeMethod(
            this, [this, reason] { showLibraryError(reason); }, Qt::QueuedConnection);
}

void Window::showLibraryError(const QString& reason) {
    showError(u"Ошибка библиотеки: "_s + plainReason(reason),
              {.informative = {}, .detailed = reason});
}

void Window::adoptFinishedFiles() {
    const QList<Recording> finished = finishedUnnoticed(library->list({}, {}));
    for (const Recording& recording : finished)
        writer->update(recording);
}

void Window::refreshLibrary() {
    if (closing)
        return;
    tryLibraryQuietly([this] { rows = library->list(filterBar->searchText(), filterBar->date()); });
    table->setRows(rows);
    table->setHint(filterBar->isFiltering()
                       ? u"Ничего не найдено. Измените запрос или снимите флажок «Дата»."_s
                       : u"Здесь появятся ваши записи. Нажмите «●  Начать запись»: Quorlin запишет "
                         "собеседников и ваш микрофон в один файл."_s);
    selectionChanged();
}

void Window::tellInterrupted() {
    const auto count = std::count_if(rows.cbegin(), rows.cend(), [](const Recording& recording) {
        return recording.status == "interrupted"_L1;
    });
    if (count > 0)
        statusBar()->showMessage(
            u"Есть прерванные записи: %1. Выделите запись и нажмите «Восстановить»."_s.arg(count));
}

const Recording* Window::selected() const {
    return table->selected();
}

SelectionFacts Window::selectionFacts() const {
    SelectionFacts facts{.exporting = exportJob.isRunning(), .state = state};
    if (const Recording* recording = selected()) {
        facts.hasSelection = true;
        facts.isCurrent = recording->id == current.id;
        // Opening a pipe would block the window.
        facts.fileExists = QFileInfo(recording->path).isFile();
        facts.ready = recording->status == "ready"_L1;
    }
    return facts;
}

void Window::selectionChanged() {
    if (closing)
        return;
    showDetails();
    const SelectionFacts facts = selectionFacts();
    const QString path = isPlayable(facts) ? selected()->path : QString();
    setPlayerSource(mayPlay(facts) ? path : QString());
    waveform->setAudioFile(path);
    updatePlaybackControls();
    actionBar->apply(actionRules(facts));
}

void Window::showDetails() {
    QString text;
    if (const Recording* recording = selected()) {
        QJsonArray events;
        tryLibraryQuietly([&] { events = library->events(recording->id); });
        text = detailsText(*recording, events);
    }
    // Setting the same text again would lose the scroll position and the selection.
    if (text == std::exchange(shownDetails, text))
        return;
    details->setPlainText(text);
    details->viewport()->repaint(); // now, because the player is about to block while it opens it
}

void Window::openFolder() {
    const Recording* recording = selected();
    if (!recording)
        return;
    const QString folder = QFileInfo(recording->path).absolutePath();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(folder)))
        statusBar()->showMessage(u"Не удалось открыть папку: "_s + folder, kMessageShownMs);
}

void Window::showContextMenu(const QPoint& place) {
    const Recording* recording = selected();
    if (!recording || !table->itemAt(place))
        return;
    const std::unique_ptr<QMenu> menu = actionBar->menu(table);
    menu->addAction(u"Копировать путь"_s, [path = recording->path] {
        QGuiApplication::clipboard()->setText(QDir::toNativeSeparators(path));
    });
    menu->exec(table->viewport()->mapToGlobal(place));
}

} // namespace qn
