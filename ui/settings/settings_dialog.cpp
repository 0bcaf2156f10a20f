#include "ui/settings/settings_dialog.h"

#include "ui/common/layouts.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace qn {

using namespace Qt::StringLiterals;

namespace {

constexpr QSize kInitialSize(650, 390);
constexpr int kSourceWidth = 30; // characters

QPushButton* plainButton(const QString& text) {
    auto* button = tallButton(text, 0);
    button->setAutoDefault(false); // Return in the folder field must not press it
    return button;
}

// Device names may be of any length, so the combo's width does not depend on them.
QComboBox* deviceCombo() {
    auto* combo = new QComboBox;
    combo->setMinimumContentsLength(kSourceWidth);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return combo;
}

QComboBox* comboOf(const QList<ComboItem>& items) {
    auto* combo = new QComboBox;
    for (const ComboItem& item : items)
        combo->addItem(item.text, item.data);
    return combo;
}

void explainFormats(QComboBox* combo) {
    const QStringList tips{u"Около 29 МБ в час; открывается в браузере и VLC"_s,
                           u"Около 58 МБ в час; открывается везде"_s,
                           u"Около 346 МБ в час; без сжатия"_s};
    for (int i = 0; i < tips.size(); ++i)
        combo->setItemData(i, tips[i], Qt::ToolTipRole);
    const auto explainCurrent = [combo] {
        combo->setToolTip(combo->currentData(Qt::ToolTipRole).toString());
    };
    explainCurrent();
    QObject::connect(combo, &QComboBox::currentIndexChanged, combo, explainCurrent);
}

bool holds(const QComboBox* combo, const ComboContents& contents) {
    QList<ComboItem> items;
    for (int i = 0; i < combo->count(); ++i)
        items.append({combo->itemText(i), combo->itemData(i)});
    return items == contents.items && combo->currentIndex() == contents.current &&
           combo->placeholderText() == contents.placeholder;
}

void fill(QComboBox* combo, const ComboContents& contents) {
    combo->setEnabled(contents.enabled);
    if (combo->view()->isVisible() || holds(combo, contents))
        return;
    combo->clear();
    combo->setPlaceholderText(contents.placeholder);
    for (const ComboItem& item : contents.items)
        combo->addItem(item.text, item.data);
    combo->setCurrentIndex(contents.current);
}

} // namespace

SettingsDialog::SettingsDialog(const Settings& settings, QWidget* parent)
    : QDialog(parent), group(new QGroupBox(u"Источники и сохранение"_s)) {
    setWindowTitle(u"Настройки записи"_s);
    resize(kInitialSize);
    buildForm(new QFormLayout(group), settings);
    auto* done = plainButton(u"Готово"_s);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addWidget(done, 0, Qt::AlignRight);
    connect(done, &QPushButton::clicked, this, &QDialog::accept);
    connectControls();
}

SettingsDialog::~SettingsDialog() {
    directoryField->disconnect(this); // it emits editingFinished if it has the focus when destroyed
}

void SettingsDialog::buildForm(QFormLayout* form, const Settings& settings) {
    kindCombo = comboOf({{u"Системное устройство вывода"_s, {}},
                         {u"Выбранная звуковая карта"_s, {}},
                         {u"Выбранное приложение"_s, {}}});
    kindCombo->setCurrentIndex(settings.sourceKind);
    sourceCombo = deviceCombo();
    microphoneCheck = new QCheckBox(u"Добавлять микрофон в запись"_s);
    microphoneCheck->setChecked(settings.microphoneEnabled);
    microphoneCheck->setToolTip(
        u"Слушайте собеседников в наушниках: из колонок их голоса попадут и в микрофон"_s);
    microphoneCombo = deviceCombo();
    formatCombo = comboOf({{u"Opus — 64 кбит/с (по умолчанию)"_s, toText(AudioFormat::Opus)},
                           {u"MP3 — 128 кбит/с"_s, toText(AudioFormat::Mp3)},
                           {u"WAV — PCM 16 бит"_s, toText(AudioFormat::Wav)}});
    formatCombo->setCurrentIndex(formatCombo->findData(toText(settings.format)));
    explainFormats(formatCombo);
    directoryField = new QLineEdit(settings.directory);
    directoryField->setAccessibleName(u"Папка записей"_s);
    auto* browse = plainButton(u"Выбрать…"_s);
    connect(browse, &QPushButton::clicked, this, &SettingsDialog::chooseDirectory);
    auto* note = new QLabel(u"При отключении выбранной карты используем системную, затем "
                            "автоматически возвращаемся.\nРежим приложения записывает приложение "
                            "целиком, включая вкладки браузера."_s);
    note->setWordWrap(true);

    form->addRow(u"Источник собеседников"_s, kindCombo);
    form->addRow(u"Устройство / приложение"_s, sourceCombo);
    form->addRow(microphoneCheck);
    form->addRow(u"Микрофон"_s, microphoneCombo);
    form->addRow(u"Формат записи"_s, formatCombo);
    form->addRow(u"Папка записей"_s, rowOf({directoryField, browse}));
    form->addRow(note);
}

void SettingsDialog::connectControls() {
    connect(kindCombo, &QComboBox::currentIndexChanged, this, &SettingsDialog::sourceKindChanged);
    for (QComboBox* combo : {sourceCombo, microphoneCombo, formatCombo})
        connect(combo, &QComboBox::currentIndexChanged, this, &SettingsDialog::changed);
    connect(directoryField, &QLineEdit::editingFinished, this, &SettingsDialog::changed);
    connect(microphoneCheck, &QCheckBox::toggled, this, [this](bool checked) {
        microphoneCombo->setEnabled(checked);
        Q_EMIT changed();
    });
}

void SettingsDialog::chooseDirectory() {
    const QString chosen = QFileDialog::getExistingDirectory(
        parentWidget(), u"Папка записей"_s, directoryField->text(), QFileDialog::ShowDirsOnly);
    if (chosen.isEmpty())
        return;
    directoryField->setText(chosen);
    Q_EMIT changed();
}

void SettingsDialog::showSources(const Settings& settings, const Catalog& catalog,
                                 const QList<MicrophoneEntry>& microphones) {
    fill(sourceCombo, sourceItems(settings, catalog));
    fill(microphoneCombo, microphoneItems(settings, microphones));
}

// With larger fonts the note wraps to more lines than fit into the initial size.
void SettingsDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    resize(width(), std::max(height(), layout()->totalHeightForWidth(width())));
}

Settings SettingsDialog::edited() const {
    Settings settings;
    settings.sourceKind = kindCombo->currentIndex();
    settings.sourceId = sourceCombo->currentData().toString();
    settings.microphoneEnabled = microphoneCheck->isChecked();
    settings.microphoneId = microphoneCombo->currentData().toByteArray();
    settings.format = audioFormatFromText(formatCombo->currentData().toString());
    settings.directory = directoryField->text().trimmed();
    return settings;
}

void SettingsDialog::setEditable(bool editable) {
    group->setEnabled(editable);
    group->setToolTip(editable ? QString() : u"Во время записи настройки менять нельзя"_s);
}

} // namespace qn
