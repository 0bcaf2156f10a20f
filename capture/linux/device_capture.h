#pragma once

#include "capture/linux/pulse_connection.h"
#include "capture/linux/record_stream.h"

#include <functional>

namespace qn {

// Records one device of the server, a microphone or a sink's monitor, until the recording breaks.
// Used under the connection's lock.
class DeviceCapture {
public:
    // `whenBroken` is called on the client library's thread.
    DeviceCapture(PulseConnection& server, const DeviceFacts& device, BlockReceiver receiver,
                  std::function<void()> whenBroken);

    // Waits until the recording runs; false if the server refuses or does not answer in time.
    bool waitUntilRunning(PulseConnection::Clock::time_point deadline);

    bool hasLostServer() const { return stream.hasLostServer(); }

    // Whether the list holds another device of the same name. After a device has gone and come
    // back, newer PipeWire servers keep the old stream open but deliver nothing.
    bool isReplaced(const QList<DeviceFacts>& devices) const;

    // Hands out the samples still held back, at the end.
    void flush() { stream.flush(); }

private:
    PulseConnection& connection;
    quint32 index;
    QString name;
    std::function<void()> broken;
    RecordStream stream;
};

} // namespace qn
