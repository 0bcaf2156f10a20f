#pragma once

#include <functional>

class QObject;

namespace qn {

enum class MicrophonePermission { Granted, Denied, Undetermined };

// The system's permission to use the microphone. Undetermined means that the user is being asked:
// `answered` is called later on the main thread, unless `context` is gone by then. Granted where
// the system has no such permission.
MicrophonePermission requestMicrophone(QObject* context,
                                       const std::function<void(bool granted)>& answered);

} // namespace qn
