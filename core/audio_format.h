#pragma once

#include <QString>

namespace qn {

enum class AudioFormat : qint32 { Opus = 0, Mp3 = 1, Wav = 2 };

// "opus", "mp3" or "wav", as kept in the settings and the library and used as file suffix. A value
// outside the enumeration gives "opus".
QString toText(AudioFormat format);

// The reverse, case-sensitive; unknown text gives Opus.
AudioFormat audioFormatFromText(const QString& text);

} // namespace qn
