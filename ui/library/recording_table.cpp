#include "ui/library/recording_table.h"

#include "core/text.h"
#include "ui/common/contrast.h"
#include "ui/common/size_text.h"
#include "ui/library/recording_text.h"

#include <QFileInfo>
#include <QFontMetricsF>
#include <QHeaderView>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QSet>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QUrl>
#include <QtMath>

#include <algorithm>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

enum Column { kTitle, kStarted, kEnded, kDuration, kFormat, kStatus, kColumns };

constexpr qsizetype kLongestShownTitle = 500;
constexpr int kLeastShownRows = 3;
constexpr int kHintMargin = 40; // px
constexpr QColor kAttentionColour(0xb2, 0x6a, 0x00);
constexpr int kMostMeasuredRows = 1000; // as many as QHeaderView measures by default

// A cell that asks the table for its text. It knows its place, which never changes: rows are added
// and removed only at the end.
class Cell : public QTableWidgetItem {
public:
    Cell(const RecordingTable& owner, int atRow, int atColumn)
        : table(owner), cellRow(atRow), cellColumn(atColumn) {}

    QVariant data(int role) const override {
        switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return table.cellText(cellRow, cellColumn);
        case Qt::ForegroundRole:
            if (const QColor colour = table.cellColour(cellRow, cellColumn); colour.isValid())
                return colour;
            return {};
        case Qt::ToolTipRole:
            return table.toolTipOf(cellRow);
        default:
            return QTableWidgetItem::data(role);
        }
    }

private:
    const RecordingTable& table;
    int cellRow;
    int cellColumn;
};

// Draws even a hostile title as one line of limited length; the cell's text stays as stored.
class OneLineDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant& value, const QLocale&) const override {
        QString text = value.toString().left(kLongestShownTitle);
        for (QChar& c : text) {
            if (c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line ||
                c.category() == QChar::Separator_Paragraph)
                c = u' ';
        }
        return text;
    }

protected:
    // The current cell looks like the rest of its row.
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->state &= ~QStyle::State_HasFocus;
    }
};

// Being recorded: its file comes a moment after its row, and is not whole.
bool isLive(const Recording& recording) {
    return recording.status == "starting"_L1 || recording.status == "recording"_L1 ||
           recording.status == "paused"_L1;
}

bool looksSame(const Recording& a, const Recording& b) {
    return a.id == b.id && a.started == b.started && a.ended == b.ended &&
           a.durationMs == b.durationMs && a.status == b.status && a.title == b.title &&
           a.format == b.format && a.timezone == b.timezone;
}

QChar widestDigit(const QFontMetricsF& metrics) {
    const QString digits = u"0123456789"_s;
    return *std::max_element(digits.begin(), digits.end(), [&](QChar a, QChar b) {
        return metrics.horizontalAdvance(a) < metrics.horizontalAdvance(b);
    });
}

} // namespace

RecordingTable::RecordingTable(QWidget* parent) : QTableWidget(0, kColumns, parent) {
    setObjectName(u"recordings"_s);
    setAccessibleName(u"Библиотека созвонов"_s);
    setHorizontalHeaderLabels({u"Название"_s, u"Начало созвона"_s, u"Окончание"_s,
                               u"Длительность"_s, u"Формат"_s, u"Состояние"_s});
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setTabKeyNavigation(false); // Tab leaves the table
    setWordWrap(false);
    verticalHeader()->hide();
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    horizontalHeader()->setSectionResizeMode(kTitle, QHeaderView::Stretch);
    setItemDelegate(new OneLineDelegate(this));
    setDragDropMode(DragOnly);
    setContextMenuPolicy(Qt::CustomContextMenu);
    for (QScrollBar* bar : {verticalScrollBar(), horizontalScrollBar()})
        bar->setAccessibleName(u"Прокрутка списка записей"_s);
}

void RecordingTable::setRows(const QList<Recording>& recordings) {
    const QSignalBlocker blocker(this);
    const QString keptId = selected() ? selected()->id : QString();
    const bool same =
        std::equal(rows.cbegin(), rows.cend(), recordings.cbegin(), recordings.cend(), looksSame);
    rows = recordings;
    lost.clear();
    if (!same) {
        resizeTo(static_cast<int>(rows.size()));
        if (!rows.isEmpty())
            Q_EMIT model()->dataChanged(model()->index(0, 0),
                                        model()->index(rowCount() - 1, kColumns - 1));
    }
    keepSelected(keptId);
}

void RecordingTable::resizeTo(int count) {
    const int before = rowCount();
    setRowCount(count);
    // The caller emits one dataChanged for all new items.
    const QSignalBlocker blocker(model());
    for (int row = before; row < count; ++row) {
        for (int column = 0; column < kColumns; ++column)
            setItem(row, column, new Cell(*this, row, column));
    }
}

void RecordingTable::keepSelected(const QString& id) {
    const Recording* now = selected();
    if (rows.isEmpty() || (now && now->id == id && selectionModel()->isRowSelected(currentRow())))
        return;
    const auto kept = std::find_if(rows.cbegin(), rows.cend(),
                                   [&](const Recording& recording) { return recording.id == id; });
    // Otherwise the current row stays where it is: after a deletion that is the neighbour.
    const bool isThere = kept != rows.cend();
    setAutoScroll(!isThere); // what is in view stays there
    selectRow(isThere ? static_cast<int>(kept - rows.cbegin()) : std::max(currentRow(), 0));
    setAutoScroll(true);
}

const Recording* RecordingTable::selected() const {
    const int row = currentRow();
    return row >= 0 && row < rows.size() ? &rows.at(row) : nullptr;
}

QString RecordingTable::cellText(int row, int column) const {
    if (row < 0 || row >= rows.size())
        return {};
    const Recording& r = rows.at(row);
    switch (column) {
    case kTitle:
        return r.title;
    case kStarted:
        return dateTimeText(r.started, r.timezone);
    case kEnded:
        return dateTimeText(r.ended, r.timezone);
    case kDuration:
        return formatDuration(r.durationMs);
    case kFormat:
        return r.format.toUpper();
    case kStatus:
        return statusName(r.status);
    default:
        return {};
    }
}

QColor RecordingTable::cellColour(int row, int column) const {
    if (row < 0 || row >= rows.size())
        return {};
    const Recording& recording = rows.at(row);
    if (isLost(row))
        return palette().color(QPalette::Disabled, QPalette::Text);
    if (column != kStatus ||
        (recording.status != "failed"_L1 && recording.status != "interrupted"_L1))
        return {};
    return legible(recording.status == "failed"_L1 ? kAlarmColour : kAttentionColour,
                   palette().color(QPalette::Base), kTextContrast);
}

QString RecordingTable::toolTipOf(int row) const {
    if (row < 0 || row >= rows.size())
        return {};
    if (isLost(row))
        return u"Аудиофайл не найден"_s;
    const Recording& recording = rows.at(row);
    const QString title = recording.title.left(kLongestShownTitle);
    return Qt::convertFromPlainText(title + u'\n' + sizeText(QFileInfo(recording.path).size()),
                                    Qt::WhiteSpaceNormal);
}

bool RecordingTable::isLost(int row) const {
    auto known = lost.constFind(row);
    if (known == lost.constEnd()) {
        const Recording& recording = rows.at(row);
        known = lost.insert(row, !isLive(recording) && !QFileInfo(recording.path).isFile());
    }
    return *known;
}

void RecordingTable::setHint(const QString& text) {
    hint = text;
    setAccessibleDescription(rows.isEmpty() ? hint : QString());
    if (rows.isEmpty())
        viewport()->update();
}

void RecordingTable::paintEvent(QPaintEvent* event) {
    QTableWidget::paintEvent(event);
    QPainter painter(viewport());
    if (!rows.isEmpty()) {
        if (hasFocus())
            painter.drawRect(visualRect(model()->index(currentRow(), 0))
                                 .united(visualRect(model()->index(currentRow(), kStatus)))
                                 .adjusted(0, 0, -1, -1));
        return;
    }
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(kHintMargin, 0, -kHintMargin, 0),
                     Qt::AlignCenter | Qt::TextWordWrap, hint);
}

// A drag only ever copies the file.
void RecordingTable::startDrag(Qt::DropActions /*actions*/) {
    QTableWidget::startDrag(Qt::CopyAction);
}

QMimeData* RecordingTable::mimeData(const QList<QTableWidgetItem*>& /*items*/) const {
    const Recording* recording = selected();
    if (!recording || isLive(*recording) || !QFileInfo(recording->path).isFile())
        return nullptr;
    auto* file = new QMimeData;
    file->setUrls({QUrl::fromLocalFile(recording->path)});
    return file;
}

QSize RecordingTable::minimumSizeHint() const {
    const int height = horizontalHeader()->sizeHint().height() +
                       kLeastShownRows * verticalHeader()->defaultSectionSize() +
                       horizontalScrollBar()->sizeHint().height() + 2 * frameWidth();
    return {QTableWidget::minimumSizeHint().width(), height};
}

// Replaces every digit by the widest one, so that texts of the same shape are measured once.
int RecordingTable::sizeHintForColumn(int column) const {
    ensurePolished();
    const QFontMetricsF metrics(font());
    const QChar digit = widestDigit(metrics);
    const int count = static_cast<int>(rows.size());
    const int first = std::clamp(rowAt(0), 0, std::max(count - kMostMeasuredRows, 0));
    QSet<QString> shapes;
    qreal widest = 0;
    for (int row = first; row < std::min(first + kMostMeasuredRows, count); ++row) {
        QString shape = cellText(row, column).left(kLongestShownTitle);
        for (QChar& c : shape) {
            if (c >= u'0' && c <= u'9')
                c = digit;
        }
        if (shapes.contains(shape))
            continue;
        shapes.insert(shape);
        widest = std::max(widest, metrics.horizontalAdvance(shape));
    }
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    return qCeil(widest) + 2 * margin + (showGrid() ? 1 : 0);
}

} // namespace qn
