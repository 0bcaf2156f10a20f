#include "app/source_listing.h"
#include "app/termination_signals.h"
#include "core/audio_block.h"
#include "core/settings.h"
#include "core/state.h"
#include "core/version.h"
#include "ui/common/message_box.h"
#include "ui/library/library_error.h"
#include "ui/window.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QLockFile>
#include <QMessageBox>
#include <QScreen>
#include <QStandardPaths>
#include <QTimer>
#include <QTranslator>

#include <algorithm>
#include <chrono>
#include <exception>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString kDataDir = u"data-dir"_s;
const QString kSmokeTest = u"smoke-test"_s;
const QString kListSources = u"list-sources"_s;

constexpr auto kSmokeTestDuration = 2s;

// Only Qt's FFmpeg back end plays and seeks Ogg Opus, MP3 and WAV on every platform. Keeps the
// user's own choice, and Qt's default where the plug-in is missing.
void chooseMediaBackend() {
    if (qEnvironmentVariableIsSet("QT_MEDIA_BACKEND"))
        return;
    const QStringList folders = QCoreApplication::libraryPaths();
    const bool isThere = std::any_of(folders.begin(), folders.end(), [](const QString& folder) {
        return !QDir(folder + u"/multimedia"_s).entryList({u"*ffmpegmediaplugin*"_s}).isEmpty();
    });
    if (isThere)
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
}

void nameApplication() {
    QCoreApplication::setOrganizationName(u"Quorlin"_s);
    QCoreApplication::setApplicationName(u"Quorlin"_s);
    QCoreApplication::setApplicationVersion(qn::version());
    QGuiApplication::setApplicationDisplayName(u"Quorlin"_s);
    QGuiApplication::setDesktopFileName(u"quorlin"_s);
    QApplication::setWindowIcon(QIcon(u":/app-icon.png"_s));
}

// These types cross threads in queued connections, which need the registration first.
void registerTypes() {
    qRegisterMetaType<qn::AudioBlock>("qn::AudioBlock");
    qRegisterMetaType<qn::Settings>("qn::Settings");
    qRegisterMetaType<qn::State>("qn::State");
}

void parse(QCommandLineParser& parser, const QApplication& application) {
    parser.setApplicationDescription(u"Запись созвонов и локальная библиотека аудио"_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({kDataDir, u"Каталог библиотеки и служебных данных"_s, u"path"_s, QString()});
    parser.addOption({kSmokeTest, u"Открыть окно и завершиться через 2 секунды"_s});
    parser.addOption({kListSources, u"Вывести доступные источники звука"_s});
    parser.process(application);
}

QString dataFolder(const QCommandLineParser& parser) {
    return parser.isSet(kDataDir)
               ? parser.value(kDataDir)
               : QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

// Translates Qt's own texts, if its translations are installed.
void speakRussian(QTranslator& translator) {
    if (translator.load(QLocale(QLocale::Russian), u"qtbase"_s, u"_"_s,
                        QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&translator);
}

int runWindow(const QString& dataDirectory, bool smokeTest) {
    try {
        const qn::TerminationSignals termination; // outlives the window, which may still be saving
        qn::Window window(dataDirectory);
        window.resize(window.size().boundedTo(window.screen()->availableSize()));
        window.show();
        QObject::connect(&termination, &qn::TerminationSignals::received, &window,
                         &qn::Window::saveAndClose);
        if (smokeTest)
            QTimer::singleShot(kSmokeTestDuration, Qt::CoarseTimer, qApp, &QCoreApplication::quit);
        return QApplication::exec();
    } catch (const std::exception& exception) {
        const QString text = QString::fromUtf8(exception.what());
        const QString note = u"Файл библиотеки: %1 — %2"_s.arg(
            QDir(dataDirectory).filePath(u"library.sqlite3"_s), qn::plainReason(text));
        qn::showBox(nullptr, QMessageBox::Critical, u"Quorlin"_s, text, QMessageBox::Ok,
                    {.informative = note, .detailed = {}});
        return 1;
    }
}

} // namespace

int main(int argc, char* argv[]) {
    // The recording thread wakes a hundred times a second, and Qt's own event loop costs less there
    // than GLib's.
    qputenv("QT_NO_THREADED_GLIB", "1");
    const QApplication application(argc, argv);
    chooseMediaBackend();
    nameApplication();
    registerTypes();
    QTranslator translator;
    speakRussian(translator); // before the parser, whose help is translated too
    QCommandLineParser parser;
    parse(parser, application);
    if (parser.isSet(kListSources))
        return qn::listSources();

    const QString dataDirectory = dataFolder(parser);
    if (!QDir().mkpath(dataDirectory)) {
        QMessageBox::critical(nullptr, u"Quorlin"_s, u"Не удалось создать каталог библиотеки"_s);
        return 1;
    }
    QLockFile lock(QDir(dataDirectory).filePath(u"instance.lock"_s));
    lock.setStaleLockTime(0);
    if (!lock.tryLock(0)) {
        QMessageBox::information(nullptr, u"Quorlin"_s,
                                 u"Приложение уже использует эту библиотеку"_s);
        return 1;
    }
    return runWindow(dataDirectory, parser.isSet(kSmokeTest));
}
