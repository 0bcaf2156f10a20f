#include "app/termination_signals.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace qn {

namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

int pipeEnds[2] = {-1, -1}; // writing to a pipe is safe in a signal handler

void notify(int) {
    const int interrupted = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(pipeEnds[1], &byte, 1);
    errno = interrupted;
}

void handleSignals(void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : kSignals) {
        struct sigaction inherited = {};
        // A signal that the parent process set to be ignored, as nohup does, stays ignored.
        if (sigaction(number, nullptr, &inherited) == 0 && inherited.sa_handler != SIG_IGN)
            sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals() {
    if (pipe(pipeEnds) != 0)
        return;
    for (const int end : pipeEnds)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(pipeEnds[1], F_SETFL, O_NONBLOCK);
    notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (read(pipeEnds[0], &byte, 1) == 1)
            Q_EMIT received();
    });
    handleSignals(notify);
}

TerminationSignals::~TerminationSignals() {
    handleSignals(SIG_DFL);
    delete notifier;
    for (int& end : pipeEnds) {
        close(end);
        end = -1;
    }
}

} // namespace qn
