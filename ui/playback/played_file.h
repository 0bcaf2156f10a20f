#pragma once

#include <QFile>

namespace qn {

// A recording as the player gets to see it: ending where its audio ends. On the window's thread
// Qt's FFmpeg back end goes through whatever lies behind, for minutes when those are gigabytes.
class PlayedFile : public QFile {
public:
    // False when nothing there can be read.
    bool openAudio(const QString& path);

    // Whether something lies behind the audio.
    bool isCut() const { return audioEnd < QFile::size(); }

    qint64 size() const override;
    bool atEnd() const override { return pos() >= size(); }

protected:
    qint64 readData(char* data, qint64 maxSize) override;

private:
    qint64 audioEnd = 0;
};

} // namespace qn
