#pragma once

#include <functional>

class QObject;

namespace qn {

enum class MicrophonePermission { Granted, Denied, Undetermined };

// What the system says about the microphone now. Undetermined means that it asks the user, whose
// answer arrives later on the main thread, unless `context` is gone. Granted where there is no such
// permission.
MicrophonePermission requestMicrophone(QObject* context,
                                       const std::function<void(bool granted)>& answered);

} // namespace qn
