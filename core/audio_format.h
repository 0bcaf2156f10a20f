#pragma once

#include <QString>

namespace qn {

enum class AudioFormat : qint32 { Opus = 0, Mp3 = 1, Wav = 2 };

// "opus", "mp3" or "wav": the form kept in settings and library, and the file suffix. Any value
// outside the enumeration is "opus".
QString toText(AudioFormat format);

// The reverse, case-sensitive; unknown text is Opus.
AudioFormat audioFormatFromText(const QString& text);

} // namespace qn
