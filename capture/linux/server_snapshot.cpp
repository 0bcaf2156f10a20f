#include "capture/linux/server_snapshot.h"

#include <algorithm>

namespace qn {

namespace {

template <typename Matches>
const DeviceFacts* findDeviceIf(const QList<DeviceFacts>& devices, Matches matches) {
    const auto found = std::find_if(devices.begin(), devices.end(), matches);
    return found == devices.end() ? nullptr : &*found;
}

} // namespace

ProgramFacts programFacts(const pa_proplist* properties) {
    const auto text = [&](const char* key) {
        return QString::fromUtf8(pa_proplist_gets(properties, key));
    };
    return {text("pipewire.access.portal.app_id"), text(PA_PROP_APPLICATION_PROCESS_BINARY),
            text(PA_PROP_APPLICATION_ID), text(PA_PROP_APPLICATION_NAME),
            text(PA_PROP_APPLICATION_PROCESS_ID)};
}

const DeviceFacts* findDevice(const QList<DeviceFacts>& devices, const QString& name) {
    return findDeviceIf(devices, [&](const DeviceFacts& device) { return device.name == name; });
}

const DeviceFacts* findDevice(const QList<DeviceFacts>& devices, quint32 index) {
    return findDeviceIf(devices, [&](const DeviceFacts& device) { return device.index == index; });
}

} // namespace qn
