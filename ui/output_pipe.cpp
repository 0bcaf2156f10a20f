#include "ui/output_pipe.h"

#include <QProcess>
#include <QThread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace qn {

namespace {

// Woken for each of its packets, tool and reader spend more time on switching than on the samples.
// With a wide pipe the reader may nap and then find a lot while the tool runs on.
#ifdef F_SETPIPE_SZ
constexpr unsigned long kNapMicroseconds = 500;

void widen(int pipe) {
    fcntl(pipe, F_SETPIPE_SZ, 1048576);
}
#else
constexpr unsigned long kNapMicroseconds = 0;

void widen(int) {}
#endif

} // namespace

OutputPipe::OutputPipe(QProcess& process) {
    process.setStandardOutputFile(QProcess::nullDevice());
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        return; // the process needs more of them to start and says itself what is missing
    readEnd = ends[0];
    writeEnd = ends[1];
    for (const int end : ends)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(readEnd, F_SETFL, O_NONBLOCK);
    widen(writeEnd);
    process.setChildProcessModifier([this] { ::dup2(writeEnd, STDOUT_FILENO); });
}

OutputPipe::~OutputPipe() {
    closeWriteEnd();
    if (readEnd >= 0)
        ::close(readEnd);
}

void OutputPipe::closeWriteEnd() {
    if (writeEnd >= 0)
        ::close(writeEnd);
    writeEnd = -1;
}

qint64 OutputPipe::read(char* bytes, qint64 most) {
    return std::max<qint64>(::read(readEnd, bytes, size_t(most)), 0);
}

bool OutputPipe::waitForMore(int timeoutMs) {
    if (kNapMicroseconds > 0)
        QThread::usleep(kNapMicroseconds);
    pollfd waiting{readEnd, POLLIN, 0};
    ::poll(&waiting, 1, timeoutMs);
    return (waiting.revents & POLLIN) != 0 || (waiting.revents & POLLHUP) == 0;
}

} // namespace qn
