#pragma once

#include <QWidget>

class QProgressBar;
class QPushButton;

namespace qn {

// Progress of the running export with its cancel button. Hidden between exports, and its children
// too.
class ExportBar : public QWidget {
    Q_OBJECT

public:
    explicit ExportBar(QWidget* parent = nullptr);

    // Shows the bar at 0 %.
    void begin();
    void end();
    void setProgress(int percent);

    QPushButton* const cancelButton;

private:
    void showAll(bool visible);

    QProgressBar* progress = nullptr;
};

} // namespace qn
