#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "data/store/store_factory.h"
#include "model/factor_table/factor_table_cbor.h"
#include "model/kept/kept_edits_file.h"
#include "model/kept/record_edits.h"
#include "tests/support/temporary_lighting_database.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

using Record = tagLAMPHOUSEINFO;

Record Lamp(int id, double flux) {
    return {id, 1, {}, flux, 0, {}, u"灯"_s};
}

// 1 changed, 2 removed, 3 as it was, two equal new ones.
QCborValue Edits() {
    WorkingRecords<Record> records;
    records.TakeLoaded({Lamp(1, 10), Lamp(2, 20), Lamp(3, 30)});
    records.Replace(Lamp(1, 11.5));
    records.Remove(2);
    records.Append(Lamp(0, 40));
    records.Append(Lamp(0, 40));
    return ToCbor(EditsOf(records));
}

// What a file with those fluxes of 1, 2, … shows once the edits are made again (-: removed, !: refused).
QString MadeAgain(const std::vector<Record>& file, const std::vector<Record>& elsewhere = {},
                  bool isWhole = true) {
    WorkingRecords<Record> records;
    records.TakeLoaded(file);
    const auto refused = MakeAgain(records, *ReadEdits<Record>(Edits()), u"again"_s,
                                   ReadAll<Record>([&](std::vector<Record>& all) {
                                       all = elsewhere;
                                       return isWhole;
                                   }));
    QStringList texts;
    records.ForEach(
        [&](const Record& record) { texts += u"%1:%2"_s.arg(record.ID).arg(record.LuminousFlux); });
    for (const auto& edit : refused) {
        texts += u"!%1"_s.arg(edit.edit.stored->ID);
    }
    if (records.UndoName() != nullptr) {
        records.Undo();
    }
    return records.EditCount() == 0 && !records.IsModified() ? texts.join(u' ') : u"not undone"_s;
}

}  // namespace

class TestKeptEdits : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EditsAreMadeAgainWhereTheFileIsAsItWas() {
        const std::tuple<std::vector<Record>, QString> cases[] = {
            {{Lamp(1, 10), Lamp(2, 20), Lamp(3, 30)}, u"1:11.5 3:30 -1:40 -2:40"_s},
            // The end came during the submit.
            {{Lamp(1, 11.5), Lamp(2, 20), Lamp(3, 30), Lamp(4, 40)}, u"1:11.5 3:30 4:40 -1:40"_s},
            {{Lamp(1, 11.5), Lamp(3, 30), Lamp(4, 40), Lamp(5, 40)}, u"1:11.5 3:30 4:40 5:40"_s},
            // Another program has been at the file.
            {{Lamp(1, 12), Lamp(2, 21), Lamp(3, 31)}, u"1:12 2:21 3:31 -1:40 -2:40 !2 !1"_s},
            {{Lamp(3, 40)}, u"3:40 -1:40 -2:40 !1"_s},
        };
        for (const auto& [file, expected] : cases) {
            QCOMPARE(MadeAgain(file), expected);
        }
        // Edited or removed records that are in the file, but not among the loaded ones.
        QCOMPARE(MadeAgain({}, {Lamp(1, 11.5), Lamp(2, 20)}), u"-1:40 -2:40 !2"_s);
        QCOMPARE(MadeAgain({Lamp(1, 10)}, {}, false), u"1:11.5 -1:40 -2:40 !2"_s);
    }

    void TheFileIsTakenAsAWholeOrNotAtAll() {
        const QTemporaryDir folder;
        KeptEditsFile file(folder.filePath(u"quorvane"_s), u"C:\\a.mdb"_s);
        QVERIFY(!file.Read());
        file.Write([] { return QCborMap{{u"records"_s, Edits()}}; });
        QTRY_VERIFY(!file.IsBusy());
        QCOMPARE((*file.Read())[u"records"_s], Edits());
        const QDir kept(folder.filePath(u"quorvane"_s));
        const QString path = kept.filePath(kept.entryList(QDir::Files).value(0));
        QCOMPARE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
        const QByteArray whole = Contents(path);
        // Damaged at any place it gives nothing, or edits of the right kind.
        for (qsizetype at = 0; at < whole.size(); ++at) {
            for (const QByteArray& damaged : {whole.first(at), QByteArray(whole).replace(at, 1, "\x9f")}) {
                QFile::remove(path);
                WriteFile(path, damaged);
                const std::optional<QCborMap> read = file.Read();
                QVERIFY(!read || damaged.size() == whole.size());
                if (read) {
                    ReadEdits<Record>((*read)[u"records"_s]);
                }
            }
        }
        // Those of another database, also where they bear its name.
        KeptEditsFile other(folder.filePath(u"quorvane"_s), u"C:\\b.mdb"_s);
        file.Write([] { return QCborMap(); });
        QTRY_VERIFY(!file.IsBusy() && file.Read());
        QVERIFY(!other.Read());
        other.Write([] { return QCborMap(); });
        QTRY_VERIFY(!other.IsBusy());
        for (const QString& name : QDir(kept.path()).entryList(QDir::Files)) {
            WriteFile(kept.filePath(name), whole);
        }
        QVERIFY(file.Read() && !other.Read());
        file.Remove();
        file.Remove();  // there is none
        QTRY_VERIFY(!file.IsBusy());
        QVERIFY(!QFile::exists(path) && file.LastFailure().isEmpty() && kept.mkdir(path));
        file.Write([] { return QCborMap(); });
        QTRY_VERIFY(!file.LastFailure().isEmpty());
        file.Remove();
        QTRY_VERIFY(!file.IsBusy() && !file.LastFailure().isEmpty());
    }

    void AFactorTableIsMadeAgainAsAWhole() {
        const TemporaryLightingDatabase place;
        place.Raw().Execute(u"insert into 利用系数 values (1,7,80,50,20,0.6,0),(2,7,70,50,20,0.6,0.5)"_s);
        CLightingDatabase database(CreateStoreConnection, place.ExecutablePath());
        QVERIFY(database.Connect());
        const auto loaded = [&](double factor) {
            place.Raw().Execute(u"update 利用系数 set UtilizationFactor=%1 where ID=1"_s.arg(factor));
            FactorTableEditing editing(database, [](const CString&) {});
            editing.Load(7);
            return editing;
        };
        FactorTableEditing edited = loaded(0.61);
        edited.Delete(FactorTableBranch::Headings, 1);
        edited.TakeLabel(FactorTableBranch::Rows, -1, u"1.25"_s);
        edited.TakeFactor(5, 1, u"0.44"_s, false);
        const auto kept = ReadFactorTable(ToCbor(edited.Edits()));
        QVERIFY(kept);
        FactorTableEditing again = loaded(0.61);
        QVERIFY(again.MakeAgain(*kept, u"again"_s) && again.IsModified());
        QVERIFY(again.Table().Factors() == edited.Table().Factors());
        QCOMPARE(again.Table().DeletedIds(), std::vector<int>{2});
        again.Undo();
        QVERIFY(!again.IsModified());
        FactorTableEditing changed = loaded(0.62);
        QVERIFY(!changed.MakeAgain(*kept, u"again"_s) && !changed.IsModified());
        // Rows that the file does not have cannot be named.
        FactorTableEditing::Kept forged = *kept;
        forged.edited.deletedIds = {99};
        QVERIFY(!loaded(0.61).MakeAgain(forged, u"again"_s));
        // The run ended within a submit, when one row had been written; then after it.
        place.Raw().Execute(u"insert into 利用系数 values (3,7,80,50,20,1.25,0.44)"_s);
        FactorTableEditing half = loaded(0.61);
        QVERIFY(half.MakeAgain(*kept, u"again"_s) && half.IsModified());
        QVERIFY(half.Submit().None() && half.Table().Factors().size() == 2);
        FactorTableEditing whole = loaded(0.61);
        QVERIFY(whole.MakeAgain(*kept, u"again"_s) && !whole.IsModified());
        place.Raw().Execute(u"insert into 利用系数 values (4,7,80,50,20,9,0.1)"_s);  // by another program
        QVERIFY(!loaded(0.61).MakeAgain(*kept, u"again"_s));
        // The second row of a cell follows the cell only at the next submit.
        place.Raw().Execute(
            u"delete from 利用系数 where ID>1; insert into 利用系数 values (5,7,80,50,20,0.6,0.5)"_s);
        FactorTableEditing twofold = loaded(0.61);
        twofold.TakeFactor(4, 1, u"0.7"_s, false);
        const auto edits = twofold.Edits();
        place.Raw().Execute(u"update 利用系数 set UtilizationFactor=0.7 where ID=5"_s);
        FactorTableEditing behind = loaded(0.61);
        QVERIFY(behind.MakeAgain(edits, u"again"_s) && behind.IsModified() && behind.Submit().None());
        QCOMPARE(place.Raw().Text(u"select group_concat(UtilizationFactor) from 利用系数"_s), u"0.7,0.7"_s);
    }
};

QTEST_GUILESS_MAIN(TestKeptEdits)
#include "test_kept_edits.moc"
