#include "ui/recording/microphone_permission.h"

#include <QCoreApplication>
#include <QtGlobal>

// Qt 6.5 is the first version with permissions.
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0) && QT_CONFIG(permissions)
#define QN_MICROPHONE_PERMISSION
#include <QPermissions>
#endif

namespace qn {

#ifdef QN_MICROPHONE_PERMISSION

MicrophonePermission requestMicrophone(QObject* context,
                                       const std::function<void(bool granted)>& answered) {
    const QMicrophonePermission permission;
    switch (qApp->checkPermission(permission)) {
    case Qt::PermissionStatus::Granted:
        return MicrophonePermission::Granted;
    case Qt::PermissionStatus::Denied:
        return MicrophonePermission::Denied;
    case Qt::PermissionStatus::Undetermined:
        break;
    }
    qApp->requestPermission(permission, context, [answered](const QPermission& result) {
        answered(result.status() == Qt::PermissionStatus::Granted);
    });
    return MicrophonePermission::Undetermined;
}

#else

MicrophonePermission requestMicrophone(QObject*, const std::function<void(bool granted)>&) {
    return MicrophonePermission::Granted;
}

#endif

} // namespace qn
