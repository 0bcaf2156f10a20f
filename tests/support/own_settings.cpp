// Part of every test program: its preferences are a file in its own folder. Otherwise macOS keeps
// them with the user's, whatever the environment says.

#include <QCoreApplication>
#include <QSettings>

static void keepSettingsApart() {
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope,
                       QStringLiteral(QUORLIN_TEST_HOME));
}
Q_COREAPP_STARTUP_FUNCTION(keepSettingsApart)
