// first_picture PROGRAM ARGUMENT...: prints the milliseconds from starting a program until its
// window has painted the middle of the screen.

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTextStream>
#include <QThread>

namespace {

QRgb middlePixel() {
    QScreen* screen = QGuiApplication::primaryScreen();
    const QPoint middle = screen->geometry().center();
    return screen->grabWindow(0, middle.x(), middle.y(), 1, 1).toImage().pixel(0, 0);
}

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    QStringList command = QCoreApplication::arguments().mid(1);
    if (command.isEmpty())
        return 2;
    const QRgb empty = middlePixel();
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    const QString name = command.takeFirst();
    QElapsedTimer clock;
    clock.start();
    program.start(name, command);
    while (middlePixel() == empty && clock.elapsed() < 20'000)
        QThread::usleep(500);
    const double milliseconds = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    program.kill();
    program.waitForFinished();
    QTextStream(stdout) << milliseconds << '\n';
    return milliseconds < 20'000 ? 0 : 1;
}
