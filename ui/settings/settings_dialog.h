#pragma once

#include "capture/catalog.h"
#include "core/settings.h"
#include "ui/settings/source_items.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QGroupBox;
class QLineEdit;

namespace qn {

// The recording preferences. The owner provides the sources and stores what the user edits.
class SettingsDialog : public QDialog {
    Q_OBJECT

public:
    SettingsDialog(const Settings& settings, QWidget* parent);
    ~SettingsDialog() override;

    // Refills both device combos, except one whose list is open. The owner must ignore the signals
    // that this emits.
    void showSources(const Settings& settings, const Catalog& catalog,
                     const QList<MicrophoneEntry>& microphones);

    // The preferences as the controls show them now.
    Settings edited() const;

    void setEditable(bool editable);

Q_SIGNALS:
    void sourceKindChanged(int kind);
    void changed();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void buildForm(QFormLayout* form, const Settings& settings);
    void connectControls();
    void chooseDirectory();

    QGroupBox* group = nullptr;
    QComboBox* kindCombo = nullptr;
    QComboBox* sourceCombo = nullptr;
    QCheckBox* microphoneCheck = nullptr;
    QComboBox* microphoneCombo = nullptr;
    QComboBox* formatCombo = nullptr;
    QLineEdit* directoryField = nullptr;
};

} // namespace qn
