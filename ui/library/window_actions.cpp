#include "core/text.h"
#include "ui/library/action_bar.h"
#include "ui/library/export_bar.h"
#include "ui/library/file_names.h"
#include "ui/library/library_writer.h"
#include "ui/window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QPushButton>
#include <QStandardPaths>
#include <QStatusBar>
#include <QWindow>

#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {
constexpr int kResultShownMs = 10000;
constexpr qsizetype kLongestAskedTitle = 200;
constexpr int kRenameWidth = 420;         // px
constexpr qint64 kUnnoticedLossMs = 2000; // the row may count this much more than was written
constexpr qint64 kUnnoticedLossBytes = 65536;
constexpr qint64 kLeastRestoredBytes = 4096; // larger than a file with headers but no audio

QString shortened(const QString& title) {
    return title.size() > kLongestAskedTitle ? title.left(kLongestAskedTitle) + u'…' : title;
}
} // namespace

bool Window::confirm(const QString& title, const QString& question) {
    return showBox(this, QMessageBox::Question, title, question,
                   QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

void Window::showError(const QString& message, const MessageNotes& notes) {
    if (!closing)
        showBox(this, QMessageBox::Warning, u"Quorlin"_s, message, QMessageBox::Ok, notes);
}

void Window::exportSelected() {
    const Recording* row = selected();
    if (!row || exportJob.isRunning())
        return;
    const Recording recording = *row;
    QString filter = exportFilter(audioFormatFromText(recording.format));
    const QDir documents(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    const QString chosen = QFileDialog::getSaveFileName(
        this, u"Экспорт аудиозаписи"_s, documents.filePath(exportFileName(recording)),
        exportFilters(), &filter);
    if (chosen.isEmpty())
        return;
    const AudioFormat format = formatOfFilter(filter);
    const QString target = withExtension(chosen, format);
    // The dialog has asked about `chosen`, not about the name with the extension added here.
    if (target != chosen && QFileInfo::exists(target) &&
        !confirm(u"Заменить файл?"_s, u"Файл уже существует. Заменить его?"_s))
        return;
    exportBar->begin();
    exportJob.start(recording, target, format);
    selectionChanged();
}

void Window::recoverSelected() {
    const Recording* row = selected();
    if (!row || exportJob.isRunning() || row->status == "ready"_L1)
        return;
    exportSubject = *row;
    recoveryTarget = recoveryPath(exportSubject);
    if (QFileInfo::exists(recoveryTarget)) {
        showError(u"Файл восстановления уже существует. Экспортируйте запись под другим именем."_s);
        return;
    }
    recovering = true;
    exportBar->begin();
    exportJob.start(exportSubject, recoveryTarget, audioFormatFromText(exportSubject.format));
    selectionChanged();
}

void Window::exportFinished(bool success, const QString& message) {
    exportBar->end();
    QString problem = success ? QString() : message;
    if (std::exchange(recovering, false) && success)
        problem = completeRecovery();
    refreshLibrary();
    selectionChanged();
    statusBar()->showMessage(message, kResultShownMs);
    if (!problem.isEmpty() && isVisible()) // closing the window has cancelled the export
        showError(problem);
}

// Returns a message for the user; empty if all went well.
QString Window::completeRecovery() {
    const qint64 restoredMs = exportJob.transcodedLength(); // 0 if the tool prints no progress
    const qint64 restoredBytes = QFileInfo(recoveryTarget).size();
    if (restoredMs <= 0 && restoredBytes < kLeastRestoredBytes) {
        QFile::remove(recoveryTarget);
        return u"Не удалось восстановить запись: в файле не найден звук. Исходный файл сохранён:\n%1"_s
            .arg(exportSubject.path);
    }
    const QString partial = std::exchange(exportSubject.path, recoveryTarget);
    exportSubject.status = u"ready"_s;
    writer->update(exportSubject);
    writer->addEvent(exportSubject.id, u"recovered"_s, {{u"partial"_s, partial}});
    // ffmpeg may take a damaged stretch for the end of the file and still report success.
    const qint64 partialBytes = QFileInfo(partial).size();
    const bool lacksBytes = partialBytes > restoredBytes + restoredBytes / 4 &&
                            partialBytes > restoredBytes + kUnnoticedLossBytes;
    if (lacksBytes && restoredMs + kUnnoticedLossMs < exportSubject.durationMs)
        return u"Восстановлено %1 из %2. Исходный файл сохранён:\n%3"_s.arg(
            formatDuration(restoredMs), formatDuration(exportSubject.durationMs), partial);
    if (writer->flush()) // otherwise the row still names the old file
        QFile::remove(partial);
    return {};
}

void Window::renameSelected() {
    const Recording* row = selected();
    if (!row)
        return;
    const Recording recording = *row;
    QInputDialog dialog(this);
    dialog.setWindowTitle(u"Название созвона"_s);
    dialog.setLabelText(u"Название"_s);
    dialog.setTextValue(recording.title);
    dialog.resize(kRenameWidth, dialog.sizeHint().height());
    const bool accepted = dialog.exec() == QDialog::Accepted;
    const QString title = dialog.textValue().trimmed();
    if (accepted && !title.isEmpty() && tryLibrary([&] { library->rename(recording.id, title); }))
        refreshLibrary();
}

void Window::deleteSelected() {
    const Recording* row = selected();
    if (!row || !actionBar->removeButton->isEnabled())
        return;
    const Recording recording = *row;
    if (!confirm(u"Удалить запись"_s,
                 u"Удалить «%1» и её аудиофайл?"_s.arg(shortened(recording.title))))
        return;
    setPlayerSource({}); // the player would hold the file open
    if (QFileInfo::exists(recording.path) && !QFile::remove(recording.path)) {
        showError(u"Не удалось удалить аудиофайл"_s);
        return;
    }
    if (!tryLibrary([&] { library->remove(recording.id); }))
        return;
    writer->forget(recording.id);
    refreshLibrary();
}

void Window::saveAndClose() {
    closing = true;
    // An open dialog would keep the window open; a question that is closed counts as No.
    for (QWidget* dialog = QApplication::activeModalWidget(); dialog && dialog->close();)
        dialog = QApplication::activeModalWidget();
    if (isResting(state)) {
        QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
        return;
    }
    closePending = true;
    stopRecording();
}

// True if the window must stay for now: recordingFinished closes it when closePending is set.
bool Window::deferCloseToRecording() {
    if (closing || (closePending && state == State::Finalizing))
        return true;
    if (!confirm(u"Запись продолжается"_s,
                 u"Остановить запись, сохранить файл и закрыть приложение?"_s))
        return true;
    // The recording may have ended by itself while the question was shown.
    if (isResting(state))
        return false;
    closePending = true;
    stopRecording();
    return true;
}

bool Window::mayCancelExport() {
    return closing ||
           confirm(u"Экспорт продолжается"_s, u"Отменить экспорт и закрыть приложение?"_s);
}

// Sends the close event as the window manager does. With close() instead, Qt would accept a second
// request to close while the question is shown, and end the program without an answer.
void Window::requestClose() {
    QCloseEvent event;
    if (windowHandle())
        QCoreApplication::sendEvent(windowHandle(), &event);
    else
        close();
}

void Window::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (!isResting(state) && deferCloseToRecording())
        return;
    if (exportJob.isRunning() && !mayCancelExport()) {
        closePending = false;
        return;
    }
    exportJob.cancel();
    event->accept();
}

} // namespace qn
