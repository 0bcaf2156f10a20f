#include "tests/support/database.h"
#include "tests/support/fake_backend.h"
#include "tests/support/files.h"
#include "ui/recording/microphone_permission.h"
#include "ui/window.h"

#include <QTest>
#include <QtWidgets>

using namespace qn;
using namespace qn::testing;

namespace {

MicrophonePermission permission = MicrophonePermission::Granted;
std::function<void(bool)> answerPermission;

// Answers the modal dialogs, in the order in which they come; cleanup proves that all came.
using Answer = std::function<void(QDialog*)>;

Answer press(QMessageBox::StandardButton button, const QString& expectedText) {
    return [=](QDialog* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        QVERIFY(box && box->button(button));
        QCOMPARE(box->text(), expectedText);
        box->button(button)->click();
    };
}

} // namespace

MicrophonePermission qn::requestMicrophone(QObject*, const std::function<void(bool)>& answered) {
    answerPermission = answered;
    return permission;
}

class WindowTest : public QObject {
    Q_OBJECT

    QList<Answer> answers;
    QTimer answering;
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<Window> window;

    template <typename Widget> Widget* find(const QString& text) {
        const auto all = window->findChildren<Widget*>();
        const auto found = std::find_if(all.begin(), all.end(),
                                        [&](Widget* widget) { return widget->text() == text; });
        return found == all.end() ? nullptr : *found;
    }
    QPushButton* button(const QString& text) { return find<QPushButton>(text); }
    QLineEdit* field(const QString& hint) {
        const auto all = window->findChildren<QLineEdit*>();
        return *std::find_if(all.begin(), all.end(), [&](QLineEdit* field) {
            return field->placeholderText().startsWith(hint);
        });
    }
    bool shows(const QString& text) { return find<QLabel>(text); }
    QPushButton* recordButton() { return window->findChild<QPushButton*>(u"record"_s); }
    QTableWidget* table() { return window->findChild<QTableWidget*>(u"recordings"_s); }
    QString cell(int row, int column) { return table()->item(row, column)->text(); }
    QString sql(const QString& text) { return query(folder->filePath(u"library.sqlite3"_s), text); }
    QString path() { return sql(u"SELECT path FROM recordings ORDER BY started DESC LIMIT 1"_s); }
    QString status() { return sql(u"SELECT DISTINCT status FROM recordings"_s); }

    void open() {
        window = std::make_unique<Window>(folder->path());
        window->show();
    }
    void record(int ms) {
        recordButton()->click();
        QTRY_VERIFY(shows(u"● Записываем"_s));
        QTest::qWait(ms);
    }
    void refuseUpdates() {
        sql(u"CREATE TRIGGER no BEFORE UPDATE ON recordings BEGIN SELECT "
            "RAISE(ABORT,'refused'); END"_s);
        answers = {[](QDialog* dialog) {
            QVERIFY(qobject_cast<QMessageBox*>(dialog)->detailedText().contains(u"refused"_s));
            dialog->accept();
        }};
        QTRY_COMPARE(answers.size(), 0);
    }
    void stop() {
        button(u"Остановить"_s)->click();
        QTRY_VERIFY(recordButton()->isEnabled());
    }

private Q_SLOTS:
    void initTestCase() {
        QCoreApplication::setOrganizationName(u"Quorlin"_s);
        QCoreApplication::setApplicationName(u"Quorlin"_s);
        answering.callOnTimeout([this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (dialog && !answers.isEmpty())
                answers.takeFirst()(dialog);
        });
        answering.start(20);
    }
    void init() {
        FakePlatform::instance() = {};
        permission = MicrophonePermission::Granted;
        folder = std::make_unique<QTemporaryDir>();
        QSettings settings;
        settings.clear();
        settings.setValue(u"microphone/enabled"_s, false);
        settings.setValue(u"audio/directory"_s, folder->filePath(u"calls"_s));
    }
    void cleanup() {
        window.reset();
        QCOMPARE(answers.size(), 0);
        QCOMPARE(FakePlatform::instance().alive, 0);
    }

    void aCallIsRecordedPausedResumedAndListed() {
        open();
        field(u"Название созвона"_s)->setText(u"  Планёрка  "_s);
        record(300);
        QVERIFY(path().endsWith(u".opus.part"_s));
        QVERIFY(!button(u"Удалить"_s)->isEnabled());
        button(u"Пауза"_s)->click();
        QTRY_VERIFY(shows(u"На паузе"_s));
        QCOMPARE(cell(0, 5), u"Пауза"_s);
        auto* details = window->findChild<QTextEdit*>();
        for (const QString& typed : {u"ПЛ"_s, u"ПЛАН"_s}) {
            field(u"Поиск по названию"_s)->setText(typed);
            if (typed.size() == 2)
                details->selectAll();
        }
        QVERIFY(details->textCursor().hasSelection()); // an equal text is not set again
        button(u"Продолжить"_s)->click();
        QTRY_VERIFY(shows(u"● Записываем"_s));
        stop();
        QTRY_COMPARE(cell(0, 5), u"Готово"_s);
        QCOMPARE(cell(0, 0), u"Планёрка"_s);
        QVERIFY(QFile::exists(path()) && path().endsWith(u".opus"_s));
        QCOMPARE(sql(u"SELECT kind FROM events"_s), u"source,pause,resume,source"_s);
        QVERIFY(window->findChild<QTextEdit*>()->toPlainText().contains(path()));
    }

    void aRecordingThatCannotStartSaysWhyAndLeavesNoRow() {
        FakePlatform::instance().catalog.applications.clear();
        const std::tuple<QString, QVariant, QString> rows[] = {
            {u"audio/directory"_s, u"/dev/null/calls"_s, u"Не удалось создать папку записей"_s},
            {u"audio/directory"_s, u"/dev/fd"_s, u"Папка записей недоступна для записи"_s},
            {u"source/kind"_s, 2, u"Выберите устройство или приложение в настройках"_s},
        };
        for (const auto& [key, value, message] : rows) {
            QSettings().setValue(key, value);
            open();
            answers = {press(QMessageBox::Ok, message)};
            recordButton()->click();
            QVERIFY(answers.isEmpty() && recordButton()->isEnabled());
            QCOMPARE(table()->rowCount(), 0);
        }
    }

    void aRecordingThatFailsSaysWhatIsLeftOfIt() {
        const std::pair<QByteArray, QString> rows[] = {
            {"for last; do :; done; echo x >\"$last\"; exit 1",
             u"Записанное до ошибки сохранено"_s},
            {{}, u"Программа ffmpeg не запускается: /nonexistent"_s}};
        for (const auto& [tool, advice] : rows) {
            open();
            useTool(tool);
            answers = {[&, advice = advice](QDialog* dialog) {
                auto* box = qobject_cast<QMessageBox*>(dialog);
                QVERIFY(!box->text().isEmpty() && box->informativeText().startsWith(advice));
                dialog->accept();
            }};
            recordButton()->click();
            QTRY_VERIFY(answers.isEmpty());
            QVERIFY(shows(u"Запись завершена с ошибкой"_s));
            qunsetenv("QUORLIN_FFMPEG");
        }
    }

    void largerFontsNeedALargerWindow() {
        open();
        QCOMPARE(window->minimumSize(), QSize(840, 680));
        QVERIFY(window->findChild<QStatusBar*>()); // it would move all when it came later
        const QFont usual = QApplication::font();
        QApplication::setFont(QFont(usual.family(), 22));
        QTRY_VERIFY(window->minimumHeight() > 700);
        QApplication::setFont(usual);
    }

    void theMicrophoneIsAskedForFirst() {
        QSettings().setValue(u"microphone/enabled"_s, true);
        open();
        permission = MicrophonePermission::Denied;
        answers = {press(QMessageBox::Ok,
                         u"Доступ к микрофону запрещён. Разрешите его в настройках "
                         "системы либо отключите микрофон."_s)};
        recordButton()->click();
        permission = MicrophonePermission::Undetermined;
        recordButton()->click();
        QVERIFY(!recordButton()->isEnabled());
        answers = {press(QMessageBox::Ok, u"Разрешите доступ к микрофону в настройках системы либо "
                                          "отключите микрофон в настройках записи."_s)};
        answerPermission(false);
        QVERIFY(recordButton()->isEnabled());
        QCOMPARE(table()->rowCount(), 0);
        recordButton()->click();
        permission = MicrophonePermission::Granted;
        answerPermission(true);
        QTRY_VERIFY(shows(u"● Записываем"_s));
    }

    void aLibraryThatRefusesCostsNeitherFileNorRow() {
        for (const bool quits : {false, true}) {
            open();
            record(100);
            refuseUpdates();
            button(u"Пауза"_s)->click();
            QTRY_VERIFY(shows(u"На паузе"_s));
            const auto paused = QDateTime::currentDateTimeUtc();
            stop();
            if (quits)
                window.reset();
            sql(u"DROP TRIGGER no"_s);
            if (quits)
                open();
            QTRY_COMPARE(cell(0, 5), u"Готово"_s);
            QVERIFY(status() == u"ready"_s && QFile::exists(path()));
            const QString at = sql(u"SELECT at FROM events WHERE kind='pause' LIMIT 1"_s);
            QVERIFY(!at.isEmpty() && QDateTime::fromString(at, Qt::ISODateWithMs) <= paused);
        }
    }

    void aRowDeletedFromOutsideHoldsNothingUp() {
        open();
        record(100);
        sql(u"DELETE FROM recordings"_s);
        button(u"Пауза"_s)->click();
        QTRY_VERIFY(shows(u"На паузе"_s));
        stop();
        record(100);
        stop();
        QTRY_COMPARE(status(), u"ready"_s);
        QVERIFY(!sql(u"SELECT kind FROM events"_s).isEmpty());
    }

    void theFocusWaitsForTheNextButtonUnlessTheUserMovesIt() {
        open();
        QWidget* elsewhere = find<QCheckBox>(u"Дата"_s);
        for (QWidget* chosen : {static_cast<QWidget*>(button(u"Пауза"_s)), elsewhere}) {
            recordButton()->setFocus();
            recordButton()->click();
            chosen->setFocus(); // without effect on a button that is still off
            QTRY_VERIFY(shows(u"● Записываем"_s));
            QCOMPARE(window->focusWidget(), chosen);
            stop();
        }
    }

    void everyEndSavesTheRecording() {
        const QString question = u"Остановить запись, сохранить файл и закрыть приложение?"_s;
        const std::function<void()> ends[] = {
            [&] {
                answers = {press(QMessageBox::No, question), press(QMessageBox::Yes, question)};
                QVERIFY(!window->close());
                QVERIFY(shows(u"● Записываем"_s));
                window->close();
            },
            [&] { // told to end behind the question
                answers = {[this](QDialog*) { window->saveAndClose(); }};
                window->close();
            },
            [&] { window.reset(); },
        };
        for (const auto& end : ends) {
            open();
            record(300);
            end();
            QTRY_VERIFY(!window || !window->isVisible());
            QCOMPARE(status(), u"ready"_s);
            QVERIFY(QFile::exists(path()));
        }
    }

    void aRefusedExportQuestionLeavesTheNextClosingAsItWas() {
        open();
        record(100);
        stop();
        sql(u"UPDATE recordings SET status='failed'"_s);
        open();
        useTool(R"(case "$*" in *-progress*) sleep 60;; *) exec ffmpeg "$@";; esac)");
        button(u"Восстановить"_s)->click();
        for (int closing = 0; closing < 2; ++closing) {
            record(100);
            answers = {press(QMessageBox::Yes,
                             u"Остановить запись, сохранить файл и закрыть приложение?"_s),
                       press(QMessageBox::No, u"Отменить экспорт и закрыть приложение?"_s)};
            window->close();
            QTRY_VERIFY(answers.isEmpty() && recordButton()->isEnabled());
            QVERIFY(window->isVisible());
        }
        record(100);
        stop(); // and does not close
        QVERIFY(window->isVisible());
        window.reset();
        qunsetenv("QUORLIN_FFMPEG");
    }

    void aRepairKeepsTheInterruptedFileOnlyWhenItLosesAudio() {
        struct Row {
            QByteArray tool; // of the repair
            qint64 extraBytes;
            QString status, message;
            bool keepsOld;
        };
        const Row rows[] = {
            {"exec ffmpeg \"$@\"", 200'000, u"ready"_s, u"Восстановлено 00:00"_s, true},
            {"exec ffmpeg \"$@\"", 0, u"ready"_s, {}, false}, // only the row is wrong
            {"for last; do :; done; head -c 9000 /dev/zero >\"$last\"", 0, u"ready"_s, {}, false},
            {"for last; do :; done; : >\"$last\"", 0, u"failed"_s, u"Не удалось восстановить"_s,
             true},
        };
        for (const Row& row : rows) {
            folder = std::make_unique<QTemporaryDir>();
            QSettings().setValue(u"audio/directory"_s, folder->filePath(u"calls"_s));
            open();
            record(100);
            stop();
            sql(u"UPDATE recordings SET status='failed',duration_ms=60000"_s);
            open();
            const QString interrupted = path();
            QFile file(interrupted);
            QVERIFY(file.open(QIODevice::Append) &&
                    file.write(QByteArray(row.extraBytes, 'x')) >= 0);
            file.close();
            if (!row.message.isEmpty())
                answers = {[&](QDialog* dialog) {
                    QVERIFY(qobject_cast<QMessageBox*>(dialog)->text().startsWith(row.message));
                    dialog->accept();
                }};
            useTool(R"(case "$*" in *-progress*) )" + row.tool +
                    R"(;; *) exec ffmpeg "$@";; esac)");
            button(u"Восстановить"_s)->click();
            QTRY_VERIFY(answers.isEmpty());
            QTRY_VERIFY(button(u"Удалить"_s)->isEnabled());
            QCOMPARE(status(), row.status);
            QCOMPARE(QFile::exists(interrupted), row.keepsOld);
            QVERIFY(QFile::exists(path()));
            qunsetenv("QUORLIN_FFMPEG");
        }
    }

    void aClosedWindowThatLivesOnListsAndAsksAsBefore() {
        open();
        QVERIFY(window->close());
        window->show();
        record(100);
        QCOMPARE(table()->rowCount(), 1);
        answers = {
            press(QMessageBox::No, u"Остановить запись, сохранить файл и закрыть приложение?"_s)};
        QVERIFY(!window->close());
        stop();
        // Gone with the cursor in the settings.
        button(u"Настройки"_s)->click();
        auto* dialog = window->findChild<QDialog*>();
        dialog->activateWindow();
        dialog->findChild<QLineEdit*>()->setFocus();
        QTRY_VERIFY(dialog->findChild<QLineEdit*>()->hasFocus());
        QTest::keyClicks(dialog->findChild<QLineEdit*>(), u"x"_s);
        window.reset();
        QVERIFY(!QSettings().value(u"audio/directory"_s).toString().endsWith(u'x'));
    }

    void anInterruptedRecordingIsRepairedExportedRenamedAndDeleted() {
        open();
        record(600);
        stop();
        window.reset();
        const QString whole = path();
        QVERIFY(QFile::rename(whole, whole + u".part"_s));
        sql(u"UPDATE recordings SET status='recording',path=path||'.part'"_s);
        open();
        QCOMPARE(cell(0, 5), u"Нуждается в восстановлении"_s);
        button(u"Восстановить"_s)->click();
        refuseUpdates();
        QVERIFY(QFile::exists(whole + u".part"_s)); // the row names it
        sql(u"DROP TRIGGER no"_s);
        QTRY_COMPARE(cell(0, 5), u"Готово"_s);
        QVERIFY(path() == whole && QFile::exists(whole));

        const QString copy = folder->filePath(u"notes.mp3"_s);
        QVERIFY(QFile(copy).open(QIODevice::WriteOnly));
        answers = {
            [this](QDialog* dialog) {
                auto* files = qobject_cast<QFileDialog*>(dialog);
                QVERIFY(files);
                files->selectNameFilter(u"MP3 (*.mp3)"_s);
                files->findChild<QLineEdit*>()->setText(folder->filePath(u"notes"_s));
                files->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
            },
            press(QMessageBox::Yes, u"Файл уже существует. Заменить его?"_s)};
        button(u"Экспорт аудио…"_s)->click();
        QTRY_VERIFY(QFile(copy).size() > 4000);
        QTRY_VERIFY(button(u"Удалить"_s)->isEnabled());

        answers = {[](QDialog* dialog) {
            qobject_cast<QInputDialog*>(dialog)->setTextValue(u" «Итоги» \U0001F4DE "_s);
            dialog->accept();
        }};
        button(u"Переименовать"_s)->click();
        QCOMPARE(cell(0, 0), u"«Итоги» \U0001F4DE"_s);
        answers = {press(QMessageBox::Yes, u"Удалить ««Итоги» \U0001F4DE» и её аудиофайл?"_s)};
        button(u"Удалить"_s)->click();
        QCOMPARE(table()->rowCount(), 0);
        QVERIFY(!QFile::exists(whole));
    }
};

QTEST_MAIN(WindowTest)
#include "window_test.moc"
