#include "capture/catalog.h"
#include "capture/microphone_samples.h"

#include <QTest>

using namespace qn;
using namespace Qt::StringLiterals;

class CaptureRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void resolvesTheChoiceAgainstWhatIsThere() {
        const struct {
            int kind;
            QString id, defaultOutput, resolved;
        } cases[] = {
            {0, u"usb"_s, u"card"_s, u"card"_s}, {0, u""_s, u""_s, u""_s},
            {0, u""_s, u"gone"_s, u""_s},        {1, u"usb"_s, u"card"_s, u"usb"_s},
            {1, u"app"_s, u"card"_s, u"card"_s}, {1, u"gone"_s, u""_s, u""_s},
            {2, u"app"_s, u"card"_s, u"app"_s},  {2, u"usb"_s, u"card"_s, u""_s},
            {7, u"usb"_s, u"card"_s, u"usb"_s},
        };
        for (const auto& [kind, id, output, resolved] : cases) {
            const Catalog catalog{{{u"usb"_s, {}}, {u"card"_s, {}}}, {{u"app"_s, {}}}, output};
            const QString found = resolveSource({static_cast<SourceKind>(kind), id}, catalog);
            QVERIFY2(found == resolved, qPrintable(u"%1 %2 %3"_s.arg(kind).arg(id, output)));
        }
    }

    void microphoneBytesBecomeSamples() {
        const std::tuple<QAudioFormat::SampleFormat, QByteArray, QList<float>, qsizetype> rows[]{
            {QAudioFormat::UInt8, QByteArray("\x00\x80\xC0", 3), {-1.0F, 0.0F}, 1},
            {QAudioFormat::Int16, QByteArray("\x00\x80\x00\x40\x07", 5), {-1.0F, 0.5F}, 1},
            {QAudioFormat::Int32, QByteArray("\0\0\0\x80\0\0\0\x40", 8), {-1.0F, 0.5F}, 0},
            {QAudioFormat::Float, QByteArray("\0\0\x80\x3F\0\0\0\xBF", 8), {1.0F, -0.5F}, 0},
            {QAudioFormat::Unknown, QByteArray(8, '\1'), {}, 8},
        };
        QAudioFormat format;
        format.setChannelCount(2);
        format.setSampleRate(44100);
        for (const auto& [kind, input, samples, left] : rows) {
            format.setSampleFormat(kind);
            QByteArray bytes = input;
            const AudioBlock block = takeMicrophoneBlock(bytes, format, 1'000'000'000);
            QVERIFY2(block.samples == samples && bytes.size() == left, input.toHex().data());
            QVERIFY(samples.isEmpty() || block.timestampNs == 999'977'325);
        }
    }
};

QTEST_GUILESS_MAIN(CaptureRulesTest)
#include "capture_rules_test.moc"
