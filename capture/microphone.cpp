#include "capture/microphone.h"

#include <algorithm>

namespace qn {

namespace {

const MicrophoneEntry* findMicrophone(const QList<MicrophoneEntry>& entries, const QByteArray& id) {
    const auto last = std::find_if(entries.rbegin(), entries.rend(),
                                   [&](const MicrophoneEntry& entry) { return entry.id == id; });
    return last == entries.rend() ? nullptr : &*last;
}

} // namespace

const MicrophoneEntry* resolveMicrophone(const QByteArray& chosen, const MicrophoneList& list) {
    if (!chosen.isEmpty()) {
        if (const MicrophoneEntry* found = findMicrophone(list.entries, chosen))
            return found;
    }
    return findMicrophone(list.entries, list.defaultId);
}

} // namespace qn
