#pragma once

#include <QDate>
#include <QWidget>

class QCheckBox;
class QDateEdit;
class QLineEdit;

namespace qn {

// The library's caption with its search by title and by day.
class FilterBar : public QWidget {
    Q_OBJECT

public:
    explicit FilterBar(QWidget* parent = nullptr);

    QString searchText() const;
    QDate date() const; // invalid while the date filter is off
    bool isFiltering() const;

    // Puts the cursor into the search field with its text selected.
    void focusSearch();

Q_SIGNALS:
    void changed();

private:
    QLineEdit* search = nullptr;
    QCheckBox* dateCheck = nullptr;
    QDateEdit* dateField = nullptr;
};

} // namespace qn
