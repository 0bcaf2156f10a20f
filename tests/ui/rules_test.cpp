#include "tests/support/files.h"
#include "ui/common/control_rules.h"
#include "ui/library/file_names.h"
#include "ui/recording/silence_watch.h"
#include "ui/settings/source_items.h"

using namespace qn;
using namespace qn::testing;

class RulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theButtonsFollowTheSelection() {
        // Export, recover, rename, delete, open the folder, play.
        const std::pair<SelectionFacts, QList<bool>> rows[] = {
            {{}, {0, 0, 0, 0, 0, 0}},
            {{.hasSelection = true, .fileExists = true, .ready = true}, {1, 0, 1, 1, 1, 1}},
            {{.hasSelection = true}, {0, 0, 1, 1, 1, 0}},
            {{.hasSelection = true, .fileExists = true, .exporting = true}, {0, 0, 1, 0, 1, 1}},
            {{.hasSelection = true, .isCurrent = true, .fileExists = true}, {0, 0, 0, 0, 1, 0}},
            {{.hasSelection = true, .fileExists = true, .state = State::Paused},
             {1, 1, 1, 1, 1, 0}},
            {{.hasSelection = true, .fileExists = true, .state = State::Failed},
             {1, 1, 1, 1, 1, 1}},
        };
        for (int row = 0; const auto& [facts, allowed] : rows) {
            const auto [toFile, recover, rename, remove, openFolder] = actionRules(facts);
            const bool play = playbackRules(facts, {}).play;
            const QList found{toFile, recover, rename, remove, openFolder, play};
            QVERIFY2(found == allowed, qPrintable(QString::number(row++)));
        }
    }

    void aSideIsCalledSilentAfterTenSecondsUntilItIsHeard() {
        SilenceWatch watch;
        watch.restart(500);
        const std::tuple<float, qint64, qint64> rows[] = {
            {0.003F, 10'400, 0},  {0.003F, 10'500, 10'000}, {0.0F, 13'700, 13'200},
            {0.0032F, 13'900, 0}, {0.0F, 23'899, 0},        {0.0F, 23'900, 10'000}};
        for (const auto& [level, now, silentMs] : rows)
            QCOMPARE(watch.update(level, now), silentMs);
    }

    void aChosenSourceThatIsGoneStaysListed() {
        const Catalog catalog{{{u"a"_s, u"A"_s}, {u"b"_s, u"B"_s}}, {{u"p"_s, u"P"_s}}, u"b"_s};
        const std::tuple<int, QString, QStringList, int> rows[] = {
            {0, u"a"_s, {u"B"_s}, 0},
            {1, u"b"_s, {u"A"_s, u"B"_s}, 1},
            {1, u""_s, {u"A"_s, u"B"_s}, 0},
            {1, u"x"_s, {u"A"_s, u"B"_s, u"Не подключено: x"_s}, 2},
            {2, u"a"_s, {u"P"_s, u"Не подключено: a"_s}, 1},
        };
        for (const auto& [kind, id, texts, current] : rows) {
            const ComboContents contents = sourceItems({kind, id, false, {}, {}, {}}, catalog);
            QStringList shown;
            for (const ComboItem& item : contents.items)
                shown.append(item.text);
            QCOMPARE(shown, texts);
            QVERIFY2(contents.current == current && contents.enabled == (kind != 0),
                     qPrintable(texts.join(u',')));
        }
        const auto missing = microphoneItems({0, {}, true, "gone", {}, {}}, {{"here", u"Here"_s}});
        QCOMPARE(missing.items.last().text, u"Не подключено: выбранный микрофон"_s);
        QCOMPARE(missing.current, 2);
    }

    void fileNamesFollowTitleZoneAndFormat() {
        const QDateTime started({2025, 3, 14}, {20, 5}, Qt::UTC);
        Recording recording{{}, u"a/b:c"_s, {}, u"mp3"_s, u"Asia/Tokyo"_s, {}, started, {}, 0, {}};
        QCOMPARE(exportFileName(recording), u"a_b_c_2025-03-15_05-05.mp3"_s);
        recording.title = QString(120, u'Ж');
        QCOMPARE(exportFileName(recording).toUtf8().size(), 247);
        for (const auto& [path, repaired] :
             {std::pair(u"/x/call.mp3.part"_s, u"/x/call.mp3"_s),
              {u"/x/call.mp3"_s, u"/x/call.mp3.recovered.mp3"_s},
              {u"/x/call.PART"_s, u"/x/call.PART.recovered.mp3"_s}}) {
            recording.path = path;
            QCOMPARE(recoveryPath(recording), repaired);
        }
        QCOMPARE(withExtension(u"n.MP3"_s, AudioFormat::Mp3), u"n.MP3"_s);
        QCOMPARE(withExtension(u"n.mp3"_s, AudioFormat::Wav), u"n.mp3.wav"_s);
        for (const AudioFormat format : {AudioFormat::Opus, AudioFormat::Mp3, AudioFormat::Wav})
            QCOMPARE(formatOfFilter(exportFilter(format)), format);
    }
};

QTEST_GUILESS_MAIN(RulesTest)
#include "rules_test.moc"
