#include "ui/library/filter_bar.h"

#include "ui/common/layouts.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace qn {

using namespace Qt::StringLiterals;

FilterBar::FilterBar(QWidget* parent)
    : QWidget(parent),
      search(new QLineEdit),
      dateCheck(new QCheckBox(u"Дата"_s)),
      dateField(new QDateEdit(QDate::currentDate())) {
    auto* caption = new QLabel(u"Библиотека созвонов"_s);
    caption->setStyleSheet(u"font-size:18px;font-weight:600"_s);
    search->setPlaceholderText(u"Поиск по названию"_s);
    search->setAccessibleName(u"Поиск по названию"_s);
    search->setClearButtonEnabled(true);
    search->findChild<QToolButton*>()->setAccessibleName(u"Очистить поиск"_s);
    dateField->setCalendarPopup(true);
    dateField->setLocale(QLocale(QLocale::Russian)); // weeks begin on Monday
    dateField->setDisplayFormat(u"dd.MM.yyyy"_s);
    dateField->setEnabled(false);
    dateField->setAccessibleName(u"Дата созвона"_s);

    layOutRow(this, {caption, search, dateCheck, dateField});
    addStretch(this, 1);

    connect(search, &QLineEdit::textChanged, this, &FilterBar::changed);
    connect(dateField, &QDateEdit::dateChanged, this, &FilterBar::changed);
    connect(dateCheck, &QCheckBox::toggled, this, [this](bool checked) {
        dateField->setEnabled(checked);
        Q_EMIT changed();
    });
}

QString FilterBar::searchText() const {
    return search->text();
}

QDate FilterBar::date() const {
    return dateCheck->isChecked() ? dateField->date() : QDate();
}

bool FilterBar::isFiltering() const {
    return !searchText().isEmpty() || date().isValid();
}

void FilterBar::focusSearch() {
    search->setFocus(Qt::ShortcutFocusReason);
    search->selectAll();
}

} // namespace qn
