#include "tests/support/fake_backend.h"
#include "ui/microphone_permission.h"
#include "ui/window.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QSqlError>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

using namespace qn;
using namespace qn::testing;
using namespace Qt::StringLiterals;

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

// The test's own look into the library file.
QString query(const QString& folder, const QString& sql) {
    QString result;
    {
        auto db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"look"_s);
        db.setDatabaseName(folder + u"/library.sqlite3"_s);
        db.open();
        QSqlQuery select(db);
        if (!select.exec(sql))
            result = select.lastError().text();
        while (select.next())
            result += (result.isEmpty() ? u""_s : u","_s) + select.value(0).toString();
    }
    QSqlDatabase::removeDatabase(u"look"_s);
    return result;
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

    QPushButton* button(const QString& text) {
        for (auto* candidate : window->findChildren<QPushButton*>()) {
            if (candidate->text() == text)
                return candidate;
        }
        return nullptr;
    }
    QTableWidget* table() { return window->findChild<QTableWidget*>(u"recordings"_s); }
    QString cell(int row, int column) { return table()->item(row, column)->text(); }
    bool shows(const QString& text) {
        const auto labels = window->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [&](QLabel* label) { return label->text() == text; });
    }
    QString path() { return query(folder->path(), u"SELECT path FROM recordings"_s); }
    QString status() { return query(folder->path(), u"SELECT status FROM recordings"_s); }

    void open() {
        window = std::make_unique<Window>(folder->path());
        window->show();
    }
    void record(int ms) {
        window->findChild<QPushButton*>(u"record"_s)->click();
        QTRY_VERIFY(shows(u"● Записываем"_s));
        QTest::qWait(ms);
    }
    void stop() {
        button(u"Остановить"_s)->click();
        QTRY_VERIFY(!shows(u"● Записываем"_s) && !shows(u"Сохраняем…"_s));
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
        for (auto* field : window->findChildren<QLineEdit*>()) {
            if (field->placeholderText().startsWith(u"Название созвона"_s))
                field->setText(u"  Планёрка  "_s);
        }
        record(300);
        QVERIFY(path().endsWith(u".opus.part"_s));
        QVERIFY(!button(u"Удалить"_s)->isEnabled());
        button(u"Пауза"_s)->click();
        QTRY_VERIFY(shows(u"На паузе"_s));
        button(u"Продолжить"_s)->click();
        QTRY_VERIFY(shows(u"● Записываем"_s));
        stop();
        QTRY_COMPARE(cell(0, 5), u"Готово"_s);
        QCOMPARE(cell(0, 0), u"Планёрка"_s);
        QCOMPARE(cell(0, 4), u"OPUS"_s);
        QVERIFY(QFile::exists(path()) && path().endsWith(u".opus"_s));
        QCOMPARE(query(folder->path(), u"SELECT kind FROM events"_s),
                 u"source,pause,resume,source"_s);
        QVERIFY(window->findChild<QTextEdit*>()->toPlainText().contains(path()));
        QVERIFY(button(u"Удалить"_s)->isEnabled() && !button(u"Восстановить"_s)->isEnabled());
    }

    void aRecordingThatCannotStartSaysWhyAndLeavesNoRow_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("message");
        QTest::newRow("no source chosen") << u"source/kind"_s << QVariant(2)
                                          << u"Выберите устройство или приложение в настройках"_s;
        QTest::newRow("no folder") << u"audio/directory"_s << QVariant(u"/dev/null/calls"_s)
                                   << u"Не удалось создать папку записей"_s;
        QTest::newRow("folder refuses files") << u"audio/directory"_s << QVariant(u"/proc"_s)
                                              << u"Папка записей недоступна для записи"_s;
    }
    void aRecordingThatCannotStartSaysWhyAndLeavesNoRow() {
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        QFETCH(QString, message);
        QSettings().setValue(key, value);
        FakePlatform::instance().catalog.applications.clear();
        open();
        answers = {press(QMessageBox::Ok, message)};
        window->findChild<QPushButton*>(u"record"_s)->click();
        QCOMPARE(table()->rowCount(), 0);
        QVERIFY(window->findChild<QPushButton*>(u"record"_s)->isEnabled());
    }

    void theMicrophoneIsAskedForFirst() {
        QSettings().setValue(u"microphone/enabled"_s, true);
        open();
        auto* recordButton = window->findChild<QPushButton*>(u"record"_s);
        permission = MicrophonePermission::Denied;
        answers = {press(QMessageBox::Ok,
                         u"Доступ к микрофону запрещён. Разрешите его в настройках "
                         "системы либо отключите микрофон."_s)};
        recordButton->click();
        permission = MicrophonePermission::Undetermined;
        recordButton->click();
        QVERIFY(!recordButton->isEnabled());
        answers = {press(QMessageBox::Ok, u"Разрешите доступ к микрофону в настройках системы либо "
                                          "отключите микрофон в настройках записи."_s)};
        answerPermission(false);
        QVERIFY(recordButton->isEnabled());
        QCOMPARE(table()->rowCount(), 0);
        recordButton->click();
        permission = MicrophonePermission::Granted;
        answerPermission(true);
        QTRY_VERIFY(shows(u"● Записываем"_s));
    }

    void aLibraryThatRefusesCostsNeitherFileNorRow() {
        open();
        record(100);
        query(folder->path(), u"CREATE TRIGGER no BEFORE UPDATE ON recordings BEGIN SELECT "
                              "RAISE(ABORT,'refused'); END"_s);
        answers = {[](QDialog* dialog) {
            QVERIFY(qobject_cast<QMessageBox*>(dialog)->text().contains(u"refused"_s));
            dialog->accept();
        }};
        QTRY_COMPARE(answers.size(), 0);
        QTest::qWait(1200);
        query(folder->path(), u"DROP TRIGGER no"_s);
        stop();
        QTRY_COMPARE(status(), u"ready"_s);
        QVERIFY(QFile::exists(path()));
    }

    void closingSavesTheRecording_data() {
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("told");
        QTest::newRow("after the question") << true << false;
        QTest::newRow("without a question when the program is told to end") << false << true;
        QTest::newRow("when the program is told to end behind the question") << true << true;
    }
    void closingSavesTheRecording() {
        QFETCH(bool, asked);
        QFETCH(bool, told);
        open();
        record(300);
        const QString question = u"Остановить запись, сохранить файл и закрыть приложение?"_s;
        if (asked && told) {
            answers = {[this](QDialog*) { window->saveAndClose(); }};
            window->close();
        } else if (asked) {
            answers = {press(QMessageBox::No, question), press(QMessageBox::Yes, question)};
            QVERIFY(!window->close());
            QVERIFY(shows(u"● Записываем"_s));
            window->close();
        } else {
            window->saveAndClose();
        }
        QTRY_VERIFY(!window->isVisible());
        QCOMPARE(status(), u"ready"_s);
        QVERIFY(QFile::exists(path()));
    }

    void destructionFinishesARunningRecording() {
        open();
        record(300);
        window.reset();
        QCOMPARE(status(), u"ready"_s);
        QVERIFY(QFile::exists(path()));
    }

    void anInterruptedRecordingIsRepairedExportedRenamedAndDeleted() {
        open();
        record(600);
        stop();
        window.reset();
        const QString whole = path();
        QVERIFY(QFile::rename(whole, whole + u".part"_s));
        query(folder->path(), u"UPDATE recordings SET status='recording',path=path||'.part'"_s);
        open();
        QCOMPARE(cell(0, 5), u"Нуждается в восстановлении"_s);
        button(u"Восстановить"_s)->click();
        QTRY_COMPARE(cell(0, 5), u"Готово"_s);
        QVERIFY(path() == whole && QFile::exists(whole) && !QFile::exists(whole + u".part"_s));

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
