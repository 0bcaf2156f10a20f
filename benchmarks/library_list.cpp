// Listing the library compared with a bare query of the same rows.

#include "benchmarks/sample_library.h"
#include "benchmarks/side_by_side.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    side_by_side::printHeader();
    for (const int rows : {10'000, 100'000}) {
        const sample_library::SampleLibrary sample(rows);
        qn::Library library(sample.path);
        const auto list = [&] {
            if (library.list({}, {}).size() != rows)
                std::abort();
        };
        const auto bareQuery = [&] {
            if (sample.bareQuery() != rows)
                std::abort();
        };
        const std::string name = "library.list of " + std::to_string(rows) + " rows";
        side_by_side::compare(name, 9, 1.5, list, bareQuery);
        const qn::Recording written = library.list({}, {}).first();
        side_by_side::compare(
            name + " after a write", 9, 3.5,
            [&] {
                library.update(written);
                list();
            },
            [&] {
                library.update(written);
                bareQuery();
            });
    }
}
