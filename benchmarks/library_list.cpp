// Listing the library beside the bare query of the same rows.

#include "benchmarks/sample_library.h"
#include "benchmarks/side_by_side.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    side_by_side::printHeader();
    for (const int rows : {10'000, 100'000}) {
        const sample_library::SampleLibrary sample(rows);
        const qn::Library library(sample.path);
        side_by_side::compare(
            "library.list of " + std::to_string(rows) + " rows", 9, 1.5,
            [&] {
                if (library.list({}, {}).size() != rows)
                    std::abort();
            },
            [&] {
                if (sample.bareQuery() != rows)
                    std::abort();
            });
    }
}
