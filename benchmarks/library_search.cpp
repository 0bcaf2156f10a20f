// The time from a keystroke in the search field until the table shows the result, compared with a
// bare query and a plain QTableWidget with six new items per row and its column widths fixed while
// it is filled.

#include "benchmarks/sample_library.h"
#include "benchmarks/side_by_side.h"
#include "ui/library/recording_table.h"

#include <QApplication>
#include <QHeaderView>

namespace {

using namespace Qt::StringLiterals;

const QString kAll;
const QString kThird = u"ПЛАНЁРКА"_s;

void present(QTableWidget& table) {
    table.resize(1096, 300);
    table.show();
    QApplication::processEvents();
}

void paint(QTableWidget& table) {
    QApplication::processEvents();
    table.viewport()->repaint();
}

class StockTable : public QTableWidget {
public:
    StockTable() : QTableWidget(0, 6) {
        setSelectionBehavior(SelectRows);
        verticalHeader()->hide();
        follow(true);
        present(*this);
    }

    void fill(const sample_library::SampleLibrary& sample, const QString& word, int rows) {
        const QSignalBlocker blocker(this);
        follow(false);
        setRowCount(rows);
        sample.bareQuery(word, [this](int row, sqlite3_stmt* values) {
            for (int column = 0; column < 6; ++column) {
                constexpr int kSources[] = {1, 5, 6, 7, 3, 8};
                setItem(row, column,
                        new QTableWidgetItem(
                            sample_library::SampleLibrary::text(values, kSources[column])));
            }
        });
        follow(true);
        paint(*this);
    }

private:
    void follow(bool contents) {
        horizontalHeader()->setSectionResizeMode(contents ? QHeaderView::ResizeToContents
                                                          : QHeaderView::Fixed);
        horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
};

void measure(int rows) {
    const sample_library::SampleLibrary sample(rows);
    const qn::Library library(sample.path);
    qn::RecordingTable table;
    present(table);
    StockTable stock;
    const int third = sample.bareQuery(kThird);
    const auto type = [&](const QString& word) {
        table.setRows(library.list(word, {}));
        paint(table);
    };
    const std::string name = "search in " + std::to_string(rows) + " rows, ";
    const int rounds = rows > 10'000 ? 5 : 15;
    side_by_side::compare(
        name + "fewer and all again", rounds, 1.0,
        [&] {
            type(kThird);
            type(kAll);
        },
        [&] {
            stock.fill(sample, kThird, third);
            stock.fill(sample, kAll, rows);
        });
    side_by_side::compare(
        name + "same result", rounds, 0.5, [&] { type(kAll); },
        [&] { stock.fill(sample, kAll, rows); });
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    side_by_side::printHeader();
    for (const int rows : {1'000, 10'000, 100'000})
        measure(rows);
}
