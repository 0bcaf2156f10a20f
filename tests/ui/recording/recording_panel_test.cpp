#include "tests/support/files.h"
#include "ui/recording/level_meter.h"
#include "ui/recording/recording_panel.h"

#include <QtWidgets>

using namespace qn;
using namespace qn::testing;

class RecordingPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void metersShowDecibelsInColoursThatStandOut() {
        for (const QColor& background : {QColor(Qt::white), QColor(0x23, 0x23, 0x23)}) {
            LevelMeter meter;
            meter.resize(600, 14);
            QPalette colours;
            colours.setColor(QPalette::Base, background);
            meter.setPalette(colours);
            // The level, its value, how much of the bar is filled, the hue of the fill's end.
            const std::tuple<float, int, int, int> rows[] = {
                {0.0F, 0, 0, -1},    {0.01F, 1, 200, 130}, {0.3F, 30, 495, 130},
                {0.5F, 50, 539, 36}, {0.95F, 95, 595, 0},  {2.0F, 100, 599, 0}};
            for (const auto& [level, value, filled, hue] : rows) {
                meter.setLevel(0);
                QTest::qWait(40);
                meter.setLevel(level);
                const QImage picture = meter.grab().toImage();
                QCOMPARE(meter.value(), value);
                int end = 1;
                while (end < 599 && picture.pixelColor(end, 7) != background)
                    ++end;
                QVERIFY2(std::abs(end - std::max(filled, 1)) < 3, qPrintable(QString::number(end)));
                if (hue >= 0)
                    QVERIFY(std::abs(picture.pixelColor(end - 3, 7).hue() - hue) < 12);
            }
        }
    }

    void aWarningStandsOutUntilTheSourceIsBack() {
        RecordingPanel panel;
        panel.setSystemCaption(u"Нет устройства"_s, true);
        const auto labels = panel.findChildren<QLabel*>();
        const auto caption = *std::find_if(labels.begin(), labels.end(), [](QLabel* label) {
            return label->text() == u"Нет устройства"_s;
        });
        const auto colour = [&] { return caption->palette().color(QPalette::WindowText); };
        QVERIFY(colour().red() > colour().blue() + 50);
        panel.setSystemCaption(u"Источник: A"_s);
        QCOMPARE(colour(), panel.palette().color(QPalette::WindowText));
    }
};

QTEST_MAIN(RecordingPanelTest)
#include "recording_panel_test.moc"
