#include "ui/playback/child_pipe.h"

#include <QThread>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <vector>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

// Woken for each of its packets, child and reader spend more time on switching than on the bytes.
// With a wide pipe the reader may nap and then find a lot while the child runs on.
#ifdef F_SETPIPE_SZ
constexpr unsigned long kNapMicroseconds = 500;

bool openPipe(std::array<int, 2>& ends) {
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return false;
    ::fcntl(ends[0], F_SETPIPE_SZ, 1048576); // may be refused; a narrow pipe only takes longer
    return true;
}
#else
constexpr unsigned long kNapMicroseconds = 0;

bool openPipe(std::array<int, 2>& ends) {
    if (::pipe(ends.data()) != 0)
        return false;
    for (const int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    return true;
}
#endif

} // namespace

ChildPipe::ChildPipe() {
    std::array<int, 2> ends{};
    if (!openPipe(ends))
        return;
    readEnd = ends[0];
    writeEnd = ends[1];
    ::fcntl(readEnd, F_SETFL, O_NONBLOCK);
}

ChildPipe::~ChildPipe() {
    closeWriteEnd();
    if (readEnd >= 0)
        ::close(readEnd);
}

QString ChildPipe::writePath() const {
    return u"/dev/fd/"_s + QString::number(writeEnd);
}

void ChildPipe::closeWriteEnd() {
    if (writeEnd >= 0)
        ::close(writeEnd);
    writeEnd = -1;
}

qint64 ChildPipe::read(char* bytes, qint64 most) {
    const ssize_t count = ::read(readEnd, bytes, size_t(most));
    ended = count == 0;
    return std::max<qint64>(count, 0);
}

void ChildPipe::waitForAny(std::initializer_list<const ChildPipe*> pipes, int timeoutMs) {
    std::vector<pollfd> open;
    for (const ChildPipe* pipe : pipes) {
        if (!pipe->ended)
            open.push_back({pipe->readEnd, POLLIN, 0});
    }
    if (open.empty())
        return;
    if (kNapMicroseconds > 0)
        QThread::usleep(kNapMicroseconds);
    ::poll(open.data(), nfds_t(open.size()), timeoutMs);
}

} // namespace qn
