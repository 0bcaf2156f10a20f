#include "ui/control_rules.h"
#include "ui/file_names.h"
#include "ui/source_items.h"

#include <QTest>

using namespace qn;
using namespace Qt::StringLiterals;

class RulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theButtonsFollowTheSelection() {
        struct {
            SelectionFacts facts;
            const char* allowed; // e export, r recover, n rename, d delete, f folder, p play
        } const rows[] = {
            {{}, ""},
            {{.hasSelection = true, .fileExists = true, .ready = true}, "endfp"},
            {{.hasSelection = true, .fileExists = true}, "erndfp"},
            {{.hasSelection = true}, "ndf"},
            {{.hasSelection = true, .fileExists = true, .exporting = true}, "nfp"},
            {{.hasSelection = true, .isCurrent = true, .fileExists = true}, "f"},
            {{.hasSelection = true, .fileExists = true, .state = State::Paused}, "erndf"},
            {{.hasSelection = true, .fileExists = true, .state = State::Failed}, "erndfp"},
        };
        for (const auto& row : rows) {
            const ActionRules rules = actionRules(row.facts);
            const PlaybackRules playback = playbackRules(row.facts, {});
            QByteArray allowed;
            for (const auto& [on, letter] : {std::pair(rules.exportAudio, 'e'),
                                             {rules.recover, 'r'},
                                             {rules.rename, 'n'},
                                             {rules.remove, 'd'},
                                             {rules.openFolder, 'f'},
                                             {playback.play, 'p'}}) {
                if (on)
                    allowed += letter;
            }
            QCOMPARE(allowed, QByteArray(row.allowed));
        }
    }

    void aChosenSourceThatIsGoneStaysListed() {
        const Catalog catalog{{{u"a"_s, u"A"_s}, {u"b"_s, u"B"_s}}, {{u"p"_s, u"P"_s}}, u"b"_s};
        struct {
            int kind;
            QString id;
            QStringList texts;
            int current;
        } const rows[] = {
            {0, u"a"_s, {u"B"_s}, 0},
            {1, u"b"_s, {u"A"_s, u"B"_s}, 1},
            {1, u""_s, {u"A"_s, u"B"_s}, 0},
            {1, u"x"_s, {u"A"_s, u"B"_s, u"Не подключено: x"_s}, 2},
            {2, u"a"_s, {u"P"_s, u"Не подключено: a"_s}, 1},
        };
        for (const auto& row : rows) {
            Settings settings;
            settings.sourceKind = row.kind;
            settings.sourceId = row.id;
            const ComboContents contents = sourceItems(settings, catalog);
            QStringList texts;
            for (const ComboItem& item : contents.items)
                texts.append(item.text);
            QCOMPARE(texts, row.texts);
            QCOMPARE(contents.current, row.current);
            QCOMPARE(contents.enabled, row.kind != 0);
        }
        Settings settings;
        settings.microphoneId = "gone";
        const auto missing = microphoneItems(settings, {{"here", u"Here"_s}});
        QCOMPARE(missing.items.last().text, u"Не подключено: выбранный микрофон"_s);
        QCOMPARE(missing.current, 2);
    }

    void fileNamesFollowTitleZoneAndFormat() {
        Recording recording;
        recording.title = u"a/b:c"_s;
        recording.format = u"mp3"_s;
        recording.timezone = u"Asia/Tokyo"_s;
        recording.started = QDateTime({2025, 3, 14}, {20, 5}, Qt::UTC);
        QCOMPARE(exportFileName(recording), u"a_b_c_2025-03-15_05-05.mp3"_s);
        for (const auto& [path, repaired] :
             {std::pair(u"/x/call.mp3.part"_s, u"/x/call.mp3"_s),
              {u"/x/call.mp3"_s, u"/x/call.mp3.recovered.mp3"_s},
              {u"/x/call.PART"_s, u"/x/call.PART.recovered.mp3"_s}}) {
            recording.path = path;
            QCOMPARE(recoveryPath(recording), repaired);
        }
        QCOMPARE(withExtension(u"n.MP3"_s, AudioFormat::Mp3), u"n.MP3"_s);
        QCOMPARE(withExtension(u"n.mp3"_s, AudioFormat::Wav), u"n.mp3.wav"_s);
        QCOMPARE(formatOfFilter(exportFilter(AudioFormat::Wav)), AudioFormat::Wav);
        QCOMPARE(formatOfFilter(u"?"_s), AudioFormat::Opus);
    }
};

QTEST_GUILESS_MAIN(RulesTest)
#include "rules_test.moc"
