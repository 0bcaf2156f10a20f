#include "ui/playback/waveform_timeline.h"

#include "core/text.h"
#include "ui/common/contrast.h"
#include "ui/playback/peak_decoder.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr int kMargin = 12;

// Lifts quiet speech so that it stays visible.
constexpr double kHeightExponent = 0.55;
// Keeps the tallest bar inside the area.
constexpr double kHalfLengthFactor = 0.45;

constexpr double kQuietContrast = 1.8; // still visible on the background

QRectF areaOf(const QWidget& widget) {
    return QRectF(widget.rect()).adjusted(kMargin, kMargin, -kMargin, -kMargin);
}

// The loudest peak under each of `columns` columns.
QList<float> columnPeaks(const QList<float>& peaks, qsizetype columns) {
    QList<float> result;
    result.reserve(columns);
    const qsizetype n = peaks.size();
    for (qsizetype i = 0; i < columns; ++i) {
        const qsizetype first = n * i / columns;
        const qsizetype last = std::min(n, std::max(first + 1, n * (i + 1) / columns));
        result.append(*std::max_element(peaks.begin() + first, peaks.begin() + last));
    }
    return result;
}

} // namespace

WaveformTimeline::WaveformTimeline(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    setMinimumHeight(76);
    setTracking(false);
    setRange(0, 0);
    setSingleStep(1000);
    setPageStep(10000);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(u"Звуковая волна и позиция воспроизведения"_s);
    setToolTip(u"Нажмите на волну или перетащите бегунок для перемотки"_s);
    connect(this, &QSlider::sliderMoved, this, [this] { update(); });
    connect(this, &QSlider::valueChanged, this, [this] { update(); });
}

WaveformTimeline::~WaveformTimeline() {
    interruptDecoders();
    for (QThread* thread : std::as_const(decoders))
        thread->wait();
}

// A screen reader would read the value as a bare number of milliseconds.
void WaveformTimeline::sliderChange(SliderChange change) {
    QSlider::sliderChange(change);
    const QString time = formatDuration(sliderPosition()) + u" / "_s + formatDuration(maximum());
    if (time != accessibleDescription())
        setAccessibleDescription(time);
}

void WaveformTimeline::setAudioFile(const QString& path) {
    if (path == file)
        return;
    file = path;
    ++generation;
    setPeaks({});
    errorText.clear();
    loading = !path.isEmpty();
    interruptDecoders();
    update();
    if (loading)
        startDecoder();
}

void WaveformTimeline::interruptDecoders() {
    for (QThread* thread : std::as_const(decoders))
        thread->requestInterruption();
}

void WaveformTimeline::startDecoder() {
    auto decode = [this, path = file, ownGeneration = generation] {
        if (const std::optional<DecodedPeaks> result = decodePeaks(path))
            QMetaObject::invokeMethod(
                this, [this, ownGeneration, result] { applyResult(ownGeneration, *result); },
                Qt::QueuedConnection);
    };
    QThread* thread = QThread::create(std::move(decode));
    thread->setParent(this);
    decoders.append(thread);
    connect(thread, &QThread::finished, this, [this, thread] {
        decoders.removeOne(thread);
        thread->deleteLater();
    });
    thread->start();
}

void WaveformTimeline::applyResult(quint64 ownGeneration, const DecodedPeaks& result) {
    if (ownGeneration != generation)
        return;
    loading = false;
    errorText = result.errorText;
    if (result.ok)
        setPeaks(result.peaks);
    update();
    Q_EMIT waveformReady(result.ok);
}

void WaveformTimeline::setPeaks(const QList<float>& newPeaks) {
    peaks = newPeaks;
    columns.clear();
}

double WaveformTimeline::playheadX() const {
    const QRectF area = areaOf(*this);
    if (maximum() <= minimum())
        return area.left();
    const double fraction =
        (double(sliderPosition()) - minimum()) / (double(maximum()) - minimum());
    return area.left() + std::clamp(fraction, 0.0, 1.0) * area.width();
}

QColor WaveformTimeline::quietColor() const {
    return legible(palette().color(QPalette::Mid), palette().color(QPalette::Base), kQuietContrast);
}

void WaveformTimeline::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = areaOf(*this);
    const double playhead = playheadX();
    const QColor base = palette().color(QPalette::Base);
    const QColor accent = legible(
        palette().color(isEnabled() ? QPalette::Highlight : QPalette::Mid), base, kPictureContrast);

    paintBackground(painter, area, playhead, accent);
    if (peaks.isEmpty())
        paintHint(painter, area);
    else
        paintColumns(painter, area, playhead, accent);
    if (maximum() > minimum())
        paintPlayhead(painter, area, playhead, accent);
    if (hasFocus())
        paintFocus(painter, accent);
}

void WaveformTimeline::paintBackground(QPainter& painter, const QRectF& area, double playhead,
                                       const QColor& accent) const {
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(area, 7, 7);
    QColor played = accent;
    played.setAlpha(25);
    painter.fillRect(QRectF(area.topLeft(), QPointF(playhead, area.bottom())), played);
    painter.setPen(QPen(quietColor(), 1, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(QPointF(area.left(), area.center().y()),
                     QPointF(area.right(), area.center().y()));
}

void WaveformTimeline::paintColumns(QPainter& painter, const QRectF& area, double playhead,
                                    const QColor& accent) {
    const qsizetype count = std::max<qsizetype>(1, qsizetype(area.width()));
    if (columns.size() != count)
        columns = columnPeaks(peaks, count);
    const QColor quiet = quietColor();
    for (qsizetype i = 0; i < count; ++i) {
        const double x = area.left() + double(i);
        const double height = std::pow(double(columns[i]), kHeightExponent) * area.height();
        const double halfLength = std::max(height * kHalfLengthFactor, 0.5);
        painter.fillRect(QRectF(x, area.center().y() - halfLength, 1, 2 * halfLength),
                         playhead >= x ? accent : quiet);
    }
}

void WaveformTimeline::paintHint(QPainter& painter, const QRectF& area) const {
    const QString text = loading           ? u"Загрузка звуковой волны…"_s
                         : !file.isEmpty() ? u"Звуковая волна недоступна"_s
                                           : u"Выберите запись для прослушивания"_s;
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(area, Qt::AlignCenter | Qt::TextSingleLine, text);
}

void WaveformTimeline::paintPlayhead(QPainter& painter, const QRectF& area, double playhead,
                                     const QColor& accent) {
    painter.setPen(QPen(accent, 2, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(QPointF(playhead, area.top()), QPointF(playhead, area.bottom()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawEllipse(QPointF(playhead, area.top()), 5, 5);
}

void WaveformTimeline::paintFocus(QPainter& painter, const QColor& accent) const {
    painter.setPen(QPen(accent, 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(2, 2, -2, -2), 8, 8);
}

void WaveformTimeline::moveTo(double x) {
    const int span = std::max(width(), 2 * kMargin + 1) - 2 * kMargin;
    const int offset = std::clamp(int(x) - kMargin, 0, span);
    setSliderPosition(QStyle::sliderValueFromPosition(minimum(), maximum(), offset, span));
    update();
}

void WaveformTimeline::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !isEnabled() || maximum() <= minimum()) {
        QSlider::mousePressEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason);
    setSliderDown(true);
    moveTo(event->position().x());
    event->accept();
}

void WaveformTimeline::mouseMoveEvent(QMouseEvent* event) {
    if (!isSliderDown()) {
        QSlider::mouseMoveEvent(event);
        return;
    }
    moveTo(event->position().x());
    event->accept();
}

void WaveformTimeline::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !isSliderDown()) {
        QSlider::mouseReleaseEvent(event);
        return;
    }
    moveTo(event->position().x());
    setSliderDown(false);
    setValue(sliderPosition());
    event->accept();
}

} // namespace qn
