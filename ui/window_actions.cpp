#include "engine/recorder_worker.h"
#include "ui/action_bar.h"
#include "ui/export_bar.h"
#include "ui/file_names.h"
#include "ui/window.h"

#include <QCloseEvent>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QStatusBar>

#include <exception>

namespace qn {

using namespace Qt::StringLiterals;

namespace {
constexpr int kResultShownMs = 10000;
}

bool Window::confirm(const QString& title, const QString& question) {
    return closing || QMessageBox::question(this, title, question,
                                            QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

void Window::showError(const QString& message) {
    if (!closing)
        QMessageBox::warning(this, u"Quorlin"_s, message);
}

// The library throws; here its error becomes a message.
bool Window::tryLibrary(const std::function<void()>& action) {
    try {
        action();
        return true;
    } catch (const std::exception& exception) {
        showError(QString::fromUtf8(exception.what()));
        return false;
    }
}

// The same for what the user did not ask for: one message until the library works again.
bool Window::readLibrary(const std::function<void()>& action) {
    try {
        action();
        libraryErrorShown = false;
        return true;
    } catch (const std::exception& exception) {
        libraryRefused(QString::fromUtf8(exception.what()));
        return false;
    }
}

void Window::libraryRefused(const QString& error) {
    if (!std::exchange(libraryErrorShown, true))
        showError(error);
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
    // The dialog asked about the name it returned, not about one changed here.
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
    if (std::exchange(recovering, false) && success)
        completeRecovery();
    refreshLibrary();
    selectionChanged();
    statusBar()->showMessage(message, kResultShownMs);
    if (!success)
        showError(message);
}

void Window::completeRecovery() {
    const QString partial = std::exchange(exportSubject.path, recoveryTarget);
    exportSubject.status = u"ready"_s;
    const bool stored = tryLibrary([&] {
        library->update(exportSubject);
        library->event(exportSubject.id, u"recovered"_s, {{u"partial"_s, partial}});
    });
    // While the row still names the partial file, it stays.
    if (stored)
        QFile::remove(partial);
}

void Window::renameSelected() {
    const Recording* row = selected();
    if (!row)
        return;
    const Recording recording = *row;
    bool accepted = false;
    const QString title = QInputDialog::getText(this, u"Название созвона"_s, u"Название"_s,
                                                QLineEdit::Normal, recording.title, &accepted)
                              .trimmed();
    if (accepted && !title.isEmpty() && tryLibrary([&] { library->rename(recording.id, title); }))
        refreshLibrary();
}

void Window::deleteSelected() {
    const Recording* row = selected();
    if (!row || !actionBar->removeButton->isEnabled())
        return;
    const Recording recording = *row;
    if (!confirm(u"Удалить запись"_s, u"Удалить «%1» и её аудиофайл?"_s.arg(recording.title)))
        return;
    player.stop();
    player.setSource({});
    if (QFileInfo::exists(recording.path) && !QFile::remove(recording.path)) {
        showError(u"Не удалось удалить аудиофайл"_s);
        return;
    }
    if (tryLibrary([&] { library->remove(recording.id); }))
        refreshLibrary();
}

void Window::saveAndClose() {
    closing = true;
    close();
}

// True while the close has to wait: recordingFinished then closes the window.
bool Window::deferCloseToRecording() {
    if (!confirm(u"Запись продолжается"_s,
                 u"Остановить запись, сохранить файл и закрыть приложение?"_s))
        return true;
    // It may have ended by itself behind the question.
    if (isResting(state))
        return false;
    closePending = true;
    stopRecording();
    return true;
}

void Window::closeEvent(QCloseEvent* event) {
    if (!isResting(state) && deferCloseToRecording()) {
        event->ignore();
    } else if (exportJob.isRunning()) {
        const bool accepted =
            confirm(u"Экспорт продолжается"_s, u"Отменить экспорт и закрыть приложение?"_s);
        if (accepted)
            exportJob.cancel();
        event->setAccepted(accepted);
    } else {
        event->accept();
    }
}

} // namespace qn
