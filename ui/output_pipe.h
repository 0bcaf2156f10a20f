#pragma once

#include <QtGlobal>

class QProcess;

namespace qn {

// The standard output of a tool that writes hundreds of megabytes, in a pipe of our own. QProcess
// takes all that waits in one read and copies it once more, and the tool, which needs the pipe's
// lock to write on, spins for as long. Belongs to one thread.
class OutputPipe {
public:
    // Ties a process to the pipe that has not started yet and starts while this lives.
    explicit OutputPipe(QProcess& process);
    ~OutputPipe();
    OutputPipe(const OutputPipe&) = delete;
    OutputPipe& operator=(const OutputPipe&) = delete;

    // To be called once the process has started: the output ends with its last writer.
    void closeWriteEnd();

    // Up to most bytes, without waiting; 0 when there are none at the moment.
    qint64 read(char* bytes, qint64 most);

    // Blocks until bytes have come, the tool has closed its end or the time is over. False once it
    // has closed it.
    bool waitForMore(int timeoutMs);

private:
    int readEnd = -1;
    int writeEnd = -1;
};

} // namespace qn
