#pragma once

#include "capture/linux/pulse_connection.h"
#include "capture/linux/record_stream.h"

#include <functional>

namespace qn {

// Records one device of the server's, a microphone or a sink's monitor, until it breaks. Used
// under the connection's lock.
class DeviceCapture {
public:
    // `whenBroken` comes on the library's thread.
    DeviceCapture(PulseConnection& server, const DeviceFacts& device, BlockReceiver receiver,
                  std::function<void()> whenBroken);

    // Waits for the server; false when it refuses or does not answer in time.
    bool waitUntilRunning(PulseConnection::Clock::time_point deadline);

    bool hasLostServer() const { return stream.hasLostServer(); }

    // Whether that list holds another device under the same name: PipeWire's newer servers let a
    // stream live on without data when its device comes back.
    bool isReplaced(const QList<DeviceFacts>& devices) const;

    // Hands out what is held back, when no more is wanted.
    void flush() { stream.flush(); }

private:
    PulseConnection& connection;
    quint32 index;
    QString name;
    std::function<void()> broken;
    RecordStream stream;
};

} // namespace qn
