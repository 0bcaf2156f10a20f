#include "ui/action_bar.h"
#include "ui/filter_bar.h"
#include "ui/recording_table.h"
#include "ui/recording_text.h"
#include "ui/waveform_timeline.h"
#include "ui/window.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QJsonArray>
#include <QTextEdit>
#include <QUrl>

namespace qn {

using namespace Qt::StringLiterals;

void Window::refreshLibrary() {
    readLibrary([this] { rows = library->list(filterBar->searchText(), filterBar->date()); });
    const QSignalBlocker blocker(table);
    table->setRows(rows);
    selectionChanged();
}

const Recording* Window::selected() const {
    const int row = table->currentRow();
    return row >= 0 && row < rows.size() ? &rows.at(row) : nullptr;
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
    const SelectionFacts facts = selectionFacts();
    const QString path = isPlayable(facts) ? selected()->path : QString();
    setPlayerSource(mayPlay(facts) ? path : QString());
    waveform->setAudioFile(path);
    updatePlaybackControls();
    actionBar->apply(actionRules(facts));
    showDetails();
}

void Window::showDetails() {
    const Recording* recording = selected();
    if (!recording) {
        details->clear();
        return;
    }
    QJsonArray events;
    readLibrary([&] { events = library->events(recording->id); });
    details->setPlainText(detailsText(*recording, events));
}

void Window::openFolder() {
    if (const Recording* recording = selected())
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(recording->path).absolutePath()));
}

} // namespace qn
