#include "capture/macos/helper_process.h"

namespace qn {

bool belongsToApplication(const QString& processBundleId, const QString& applicationId) {
    return processBundleId == applicationId || processBundleId.startsWith(applicationId + u'.');
}

} // namespace qn
