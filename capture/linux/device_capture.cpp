#include "capture/linux/device_capture.h"

#include <utility>

namespace qn {

DeviceCapture::DeviceCapture(PulseConnection& server, const DeviceFacts& device,
                             BlockReceiver receiver, std::function<void()> whenBroken)
    : connection(server),
      index(device.index),
      name(device.name),
      broken(std::move(whenBroken)),
      stream(server.loopApi(), RecordTarget{device, PA_INVALID_INDEX, {}},
             RecordStream::Callbacks{std::move(receiver), [this] {
                                         connection.wake();
                                         if (stream.isBroken())
                                             broken();
                                     }}) {}

bool DeviceCapture::waitUntilRunning(PulseConnection::Clock::time_point deadline) {
    const auto settled = [this] { return stream.isRunning() || stream.isBroken(); };
    return connection.waitFor(settled, deadline) && stream.isRunning();
}

bool DeviceCapture::isReplaced(const QList<DeviceFacts>& devices) const {
    const DeviceFacts* listed = findDevice(devices, name);
    return listed && listed->index != index;
}

} // namespace qn
