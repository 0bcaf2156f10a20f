#pragma once

#include <QString>

#include <initializer_list>

namespace qn {

// A pipe from a child process, for a channel that carries hundreds of megabytes, or without end.
// QProcess takes all that waits in one read, and the child, which needs the pipe's lock to write
// on, spins for as long; and while it waits it gathers without a limit. Belongs to one thread.
class ChildPipe {
public:
    ChildPipe(); // without a free descriptor writePath is one that no process can open
    ~ChildPipe();
    ChildPipe(const ChildPipe&) = delete;
    ChildPipe& operator=(const ChildPipe&) = delete;

    // What QProcess redirects a channel to. A modifier of the child would do as well, but has
    // QProcess fork, which copies this process's page tables, instead of vfork.
    QString writePath() const;

    // In the parent, once the child runs: the pipe ends with its last writer.
    void closeWriteEnd();

    // Up to most bytes, without waiting; 0 when there are none at the moment or any more.
    qint64 read(char* bytes, qint64 most);

    // Whether the last read found the pipe empty and without writers.
    bool atEnd() const { return ended; }

    // Blocks until one of these has bytes or comes to its end, or the time is over. At once when
    // all are at their end.
    static void waitForAny(std::initializer_list<const ChildPipe*> pipes, int timeoutMs);

private:
    int readEnd = -1;
    int writeEnd = -1;
    bool ended = false;
};

} // namespace qn
