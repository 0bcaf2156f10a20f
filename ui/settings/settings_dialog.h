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

// The recording preferences. Shows what it is given and tells when the user edits; storing them and
// listing the sources is the owner's.
class SettingsDialog : public QDialog {
    Q_OBJECT

public:
    SettingsDialog(const Settings& settings, QWidget* parent);
    ~SettingsDialog() override;

    // Refills both combos, except one whose list is open. Emits signals: the owner ignores them.
    void showSources(const Settings& settings, const Catalog& catalog,
                     const QList<MicrophoneEntry>& microphones);

    // What the controls say now.
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
