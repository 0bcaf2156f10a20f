#include "ui/recording/recording_icon.h"

#include "ui/common/contrast.h"

#include <QPainter>
#include <QPixmap>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kSize = 128; // px
constexpr QRect kDot(72, 72, 52, 52);
constexpr int kRim = 6;

} // namespace

QIcon recordingIcon(bool recording) {
    const QIcon plain(u":/app-icon.png"_s);
    if (!recording)
        return plain;
    QPixmap picture = plain.pixmap(kSize);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, kRim));
    painter.setBrush(kAlarmColour);
    painter.drawEllipse(kDot);
    painter.end();
    return picture;
}

} // namespace qn
