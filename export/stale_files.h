#pragma once

#include <QString>

namespace qn {

// Name of an export's temporary file, as a template for QTemporaryFile.
QString temporaryFileTemplate(const QString& folder);

// Removes from the folder what exports left there when the program was killed: the user's own
// temporary files that are older than an hour and that no running process has open.
void removeStaleFiles(const QString& folder);

} // namespace qn
