#include <QDateTime>
#include <QTest>

#include "model/working_luminaires.h"
#include "tests/support/failing_connection.h"

using namespace Qt::Literals::StringLiterals;
using namespace quorvane;

namespace {

const QString kFile =
    u"insert into 光源类别 values (1,'荧光灯'),(2,'白炽灯');"
    "insert into 光源 values (11,1,'T8',3350,36,'','直管');"
    "insert into 灯具 values "
    "(31,'1','筒灯','D1',75,1,0,0,'','2',1,4,'11','f','\\Vexal\\LuminairePhotoLib\\31.jpg'),"
    "(32,'1','台灯','D2',60,0,0,0,'','1',0,0,'直管:T8','','');"
    "insert into 利用系数 values (1,31,70,50,20,1,0.5),(2,31,70,50,20,2,0.25),(3,32,80,50,20,1,0.125);"_s;

// Luminaires 31 (with a photo and two factors) and 32 (with one factor), loaded from a file of their own.
struct Place : FailingDatabase {
    Place() : FailingDatabase(kFile) {
        luminaires.Load(u"1"_s);
        WriteFile(Library() + u"31.jpg"_s, "old");
    }

    QString Library() const { return file.Folder() + u"/Vexal/LuminairePhotoLib/"_s; }
    // "31.jpg=old 32.bmp=new": every file of the library.
    QString Photos() const {
        QStringList photos;
        for (const QString& name : QDir(Library()).entryList(QDir::Files, QDir::Name)) {
            photos += name + u'=' + QString(Contents(Library() + name));
        }
        return photos.join(u' ');
    }
    // "31:0.5 31:0.25": luminaire and value of every factor.
    QString Factors() const {
        return file.Raw()
            .Rows(u"select LuminaireID||':'||UtilizationFactor from 利用系数 order by LuminaireID, ID"_s)
            .join(u' ')
            .remove(u'\'');
    }
    QString Field(const char* field, int id) const {
        return file.Raw().Text(u"select %1 from 灯具 where ID=%2"_s.arg(QLatin1String(field)).arg(id));
    }
    void SetPhoto(int id, const QString& photo) {
        tagLUMINAIREINFO record = *luminaires.Records().Find(id);
        record.LampPhoto = photo;
        luminaires.Records().Replace(record);
    }
    bool Copy(int id) { return luminaires.Copy(*luminaires.Records().Find(id)); }
    QString Picture() const {
        WriteFile(file.Folder() + u"/p.bmp"_s, "new");
        return file.Folder() + u"/p.bmp"_s;
    }

    ReferenceLists lists{database};
    WorkingLuminaires luminaires{database, lists};
};

}  // namespace

class TestWorkingLuminaires : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Wherever the writing of a pasted luminaire fails, the row counts as unwritten, and the next submit
    // writes the rest without doubling anything.
    void APasteIsWrittenWholeOrTriedAgain() {
        for (const QString& failing : {u""_s, u"insert into 灯具"_s, u"update 灯具"_s,
                                       u"delete * from 利用系数"_s, u"0.5)"_s, u"0.25)"_s}) {
            for (const int target : {0, 32}) {
                Place place;
                QVERIFY(!place.luminaires.CanPaste() && place.Copy(31) && place.luminaires.CanPaste());
                place.log.failing = failing.isEmpty() ? QStringList() : QStringList(failing);
                const WorkingLuminaires::Saved saved = place.luminaires.Paste(target);
                const bool fails = !failing.isEmpty() && (target == 0 || !failing.startsWith(u"insert"));
                QCOMPARE(saved.written, !fails);
                QCOMPARE(saved.StoredId() != 0, !fails);
                QCOMPARE(place.luminaires.Records().IsModified(), fails);
                QCOMPARE(place.luminaires.Records().IsUnwritten(saved.id), fails);
                place.log.failing.clear();
                QVERIFY(place.luminaires.Submit().None());
                const int id = target == 0 ? 33 : 32;
                QCOMPARE(place.Factors(), (target == 0 ? u"31:0.5 31:0.25 32:0.125 %1:0.5 %1:0.25"_s
                                                       : u"31:0.5 31:0.25 %1:0.5 %1:0.25"_s)
                                              .arg(id));
                QCOMPARE(place.Photos(), u"31.jpg=old %1.jpg=old"_s.arg(id));
                QCOMPARE(place.Field("LampName||UtilizationFactorFormat", id), u"筒灯f"_s);
            }
        }
    }

    // Another program changes them before the comparison; the next submit writes them again.
    void PastedFactorsAreCompared() {
        Place place;
        place.Copy(31);
        place.log.onStatement = [&](const QString& statement) {
            if (statement.startsWith(u"select ID,Pcc"_s)) {
                place.file.Raw().Execute(u"update 利用系数 set UtilizationFactor=9 where ID>3"_s);
            }
        };
        QCOMPARE(place.luminaires.Paste(32).failures.different, 1);
        place.log.onStatement = {};
        QVERIFY(place.luminaires.Records().IsModified() && place.luminaires.Submit().None());
        QCOMPARE(place.Factors(), u"31:0.5 31:0.25 32:0.5 32:0.25"_s);
    }

    // In a later run: only over the factors that they were to replace, unless they are in the file already.
    void PastedFactorsOutliveTheRun() {
        const QString other = u"31:0.5 31:0.25 32:9.0"_s;
        const QString pasted = u"31:0.5 31:0.25 32:0.5 32:0.25"_s;
        const QString write =
            u"insert into 利用系数 values (7,32,70,50,20,1,0.5),(8,32,70,50,20,2,0.25);delete from 利用系数 where ID=3"_s;
        for (const auto& [since, isTaken, factors] :
             {std::tuple(QString(), true, pasted),
              {write, true, pasted},
              {u"update 利用系数 set UtilizationFactor=9 where ID=3"_s, false, other}}) {
            Place place;
            place.Copy(31);
            place.log.failing = QStringList{u"update 灯具"_s};
            place.luminaires.Paste(32);
            place.log.failing.clear();
            const WorkingLuminaires::PastedFactors kept = place.luminaires.PendingFactors().at(32);
            place.file.Raw().Execute(since);
            place.luminaires.Load(u"1"_s);
            QCOMPARE(place.luminaires.PasteFactorsAgain(32, kept), isTaken);
            QVERIFY(place.luminaires.Submit().None());
            QCOMPARE(place.Factors(), factors);
        }
    }

    // A picture that has taken its place is not put there again with what is still to be written.
    void APictureIsPlacedOnce() {
        Place place;
        place.Copy(31);
        place.log.failing = QStringList{u"0.5)"_s};
        QVERIFY(!place.luminaires.Paste(31).written);
        WriteFile(place.Library() + u"31.jpg"_s, "newer");
        place.log.failing.clear();
        QVERIFY(place.luminaires.Submit().None());
        QCOMPARE(place.Photos(), u"31.jpg=newer"_s);
    }

    void APasteLeavesOtherEditsPending() {
        Place place;
        place.SetPhoto(31, {});
        place.Copy(32);
        QVERIFY(place.luminaires.Paste(0).written);
        QVERIFY(place.luminaires.Records().IsModified());
        QCOMPARE(place.Photos(), u"31.jpg=old"_s);
    }

    // What has been pasted and not written is copied, not what stands in the file.
    void ACopyIncludesWhatIsUnsaved() {
        Place place;
        place.Copy(31);
        place.log.failing = QStringList{u"update 灯具"_s};
        place.luminaires.Paste(32);
        place.file.Raw().Execute(u"delete from 利用系数"_s);
        QVERIFY(QFile::remove(place.Library() + u"31.jpg"_s));
        QVERIFY(place.Copy(32));
        place.log.failing.clear();
        QCOMPARE(place.luminaires.Paste(0).StoredId(), 33);
        QCOMPARE(place.Factors(), u"33:0.5 33:0.25"_s);
        QCOMPARE(place.Photos(), u"33.jpg=old"_s);
    }

    // The factors of a file that cannot be written can be looked at.
    void AnUnchangedLuminaireNeedsNoWriting() {
        Place place;
        place.log.failing = QStringList{u"update 灯具"_s};
        QCOMPARE(place.luminaires.Save(31).StoredId(), 31);
        QVERIFY(place.luminaires.Submit().None());
        place.SetPhoto(31, {});
        QCOMPARE(place.luminaires.Save(31).StoredId(), 0);
        place.log.failing = QStringList{u"EndSubmit"_s};  // written, but perhaps not yet on the disk
        QCOMPARE(place.luminaires.Save(31).StoredId(), 0);
        place.log.failing.clear();
        QVERIFY(place.luminaires.Submit().None());
        QCOMPARE(place.Field("DefaultLamphouse", 32), u"11"_s);  // its ID was not known when it was chosen
    }

    void ACopyNeedsAllFactors() {
        Place place;
        place.Copy(32);
        place.file.Raw().Execute(u"update 利用系数 set UtilizationFactor=null where ID=2"_s);
        QVERIFY(!place.Copy(31) && !place.luminaires.CanPaste());
    }

    // The next new luminaire gets the same provisional ID as one that was given up.
    void ALoadDropsWhatIsUnsaved() {
        Place place;
        place.Copy(31);
        place.log.failing = QStringList{u"insert into 灯具"_s};
        QCOMPARE(place.luminaires.Paste(0).id, -1);
        place.log.failing.clear();
        place.luminaires.Load(u"1"_s);
        tagLUMINAIREINFO added = EmptyLuminaire();
        added.LampName = u"新灯"_s;
        added.LampPhoto = u"\\Vexal\\LuminairePhotoLib\\31.jpg"_s;
        QVERIFY(QFile::remove(place.Library() + u"31.jpg"_s));
        QCOMPARE(place.luminaires.Records().Append(added), -1);
        QCOMPARE(place.luminaires.Submit().photos, 1);  // its picture is gone
        QCOMPARE(place.Factors(), u"31:0.5 31:0.25 32:0.125"_s);
        QCOMPARE(place.Photos(), QString());
    }

    void ANewLuminairesPhotoBearsItsId() {
        Place place;
        tagLUMINAIREINFO added = EmptyLuminaire();
        added.LampPhoto = place.Picture();
        place.luminaires.Records().Append(added);
        place.log.failing = QStringList{u"update 灯具"_s};
        place.luminaires.Submit();
        QCOMPARE(place.luminaires.CountWithoutCategory(), 0);  // none that was written
        place.log.failing.clear();
        QVERIFY(place.luminaires.Submit().None());
        QCOMPARE(place.Field("LampPhoto", 33), u"\\Vexal\\LuminairePhotoLib\\33.bmp"_s);
        QCOMPARE(place.luminaires.Records().Find(33)->LampPhoto, place.Field("LampPhoto", 33));
        QCOMPARE(place.Photos(), u"31.jpg=old 33.bmp=new"_s);
        QVERIFY(!place.log.statements.filter(u"insert into 灯具"_s).constFirst().contains(u"p.bmp"_s));
        QCOMPARE(place.luminaires.CountWithoutCategory(), 1);
    }

    void AFailedUpdateKeepsTheOldPhoto() {
        Place place;
        const QString picture = place.Picture();
        place.SetPhoto(31, picture);
        place.SetPhoto(32, picture);
        place.log.failing = QStringList{u"update 灯具"_s};
        QCOMPARE(place.luminaires.Submit().writes, 2);
        QCOMPARE(place.Photos(), u"31.jpg=old"_s);
        QCOMPARE(place.luminaires.Records().Find(31)->LampPhoto, picture);
        QCOMPARE(place.luminaires.CountWithoutCategory(), 0);
        place.log.failing.clear();
        // A picture that cannot take its place when the record has been written leaves the old one.
        place.log.onStatement = [&](const QString& statement) {
            if (statement.contains(u"31.bmp"_s)) {
                QDir().mkpath(place.Library() + u"31.bmp"_s);
            }
        };
        QCOMPARE(place.luminaires.Submit().writes, 1);
        QCOMPARE(place.Photos(), u"31.jpg=old 32.bmp=new"_s);
        QCOMPARE(place.Field("LampPhoto", 31), u"\\Vexal\\LuminairePhotoLib\\31.jpg"_s);
        QCOMPARE(place.luminaires.Records().Find(31)->LampPhoto, picture);
        QVERIFY(QDir().rmdir(place.Library() + u"31.bmp"_s));
        place.log.onStatement = {};
        QVERIFY(place.luminaires.Submit().None());
        QCOMPARE(place.Photos(), u"31.bmp=new 32.bmp=new"_s);
    }

    // What stands in the file may name anything.
    void AStoredPhotoIsLeftAlone() {
        for (const QString& stored :
             {u"\\..\\p.bmp"_s, u"\\Vexal\\LuminairePhotoLib\\..\\..\\p.bmp"_s, u"*"_s}) {
            Place place;
            const QString photo = stored == u"*"_s ? place.Picture() : stored;
            place.Picture();
            place.file.Raw().Execute(u"update 灯具 set LampPhoto='%1' where ID=32"_s.arg(photo));
            place.luminaires.Load(u"1"_s);
            QVERIFY(place.luminaires.Submit().None() && place.Copy(32));
            QVERIFY(place.luminaires.Paste(0).written && place.luminaires.Submit().None());
            QCOMPARE(place.Photos(), u"31.jpg=old"_s);
            QCOMPARE(place.Field("LampPhoto", 32), photo);
            QCOMPARE(place.Field("LampPhoto", 33), photo);
        }
    }

    // A drive that is slow or goes away meanwhile does not hold up the file's lock.
    void PhotosAreCopiedBeforeTheSubmit() {
        Place place;
        tagLUMINAIREINFO added = EmptyLuminaire();
        added.LampName = u"新灯"_s;
        added.LampPhoto = place.Picture();
        place.luminaires.Records().Append(added);
        place.SetPhoto(31, added.LampPhoto);
        place.luminaires.CopyPhotos([](int, int) {});
        QVERIFY(QFile::remove(added.LampPhoto));
        QVERIFY(place.luminaires.Submit().None());
        QCOMPARE(place.Photos(), u"31.bmp=new 33.bmp=new"_s);
    }

    // Killed after the record of 31 was written, before that of 32, or while copying.
    void WhatAKillLeftIsPutRight() {
        Place place;
        for (const QString& name : {u"31.bmp"_s, u"staged-31.jpg"_s, u"staged-32.bmp"_s, u"staged-7.jpg"_s,
                                    u"copying-1"_s, u"copying-2"_s}) {
            QFile file(place.Library() + name);
            WriteFile(file.fileName(), name.toUtf8());
            const int age = name.contains(u'7') || name.contains(u"g-1"_s) ? 4000 : 3000;  // seconds
            QVERIFY(file.open(QIODevice::ReadWrite) &&
                    file.setFileTime(QDateTime::currentDateTime().addSecs(-age),
                                     QFileDevice::FileModificationTime));
        }
        WorkingLuminaires next(place.database, place.lists);
        next.Load(u"1"_s);
        QCOMPARE(place.Photos(), u"31.jpg=staged-31.jpg copying-2=copying-2 staged-32.bmp=staged-32.bmp"_s);
    }

    void PicturesChangeHandsInOneSubmit() {
        for (const QString& way : {u"at once"_s, u"one first"_s, u"no room for a temporary copy"_s}) {
            Place place;
            place.SetPhoto(32, place.Picture());
            place.luminaires.Submit();
            place.SetPhoto(31, place.Library() + u"32.bmp"_s);
            place.SetPhoto(32, u"\\Vexal\\LuminairePhotoLib\\31.jpg"_s);
            if (way == u"one first"_s) {
                QVERIFY(place.luminaires.Save(31).written);
            } else if (way != u"at once"_s) {
                qputenv("TMPDIR", "/proc");
                QCOMPARE(place.luminaires.Submit().photos, 2);
                qunsetenv("TMPDIR");
                QCOMPARE(place.Photos(), u"31.jpg=old 32.bmp=new"_s);
            }
            QVERIFY(place.luminaires.Submit().None());
            QCOMPARE(place.Photos(), u"31.bmp=new 32.jpg=old"_s);
        }
    }

    void ADeletedLuminaireTakesItsPhotoAlong() {
        Place place;
        place.Copy(31);
        place.luminaires.Records().Remove(31);
        place.log.failing = QStringList{u"delete * from 灯具"_s};
        QCOMPARE(place.luminaires.Submit().deletes, 1);
        QCOMPARE(place.Photos(), u"31.jpg=old"_s);
        place.luminaires.Records().Remove(31);
        place.log.failing.clear();
        QVERIFY(place.luminaires.Submit().None());
        QCOMPARE(place.Photos(), QString());
        QCOMPARE(place.Factors(), u"32:0.125"_s);
        // What was copied outlives it.
        QCOMPARE(place.luminaires.Paste(0).StoredId(), 33);
        QCOMPARE(place.Photos(), u"33.jpg=old"_s);
    }

    void AnEmptyLuminaireHasNoEntryButAPhoto() {
        tagLUMINAIREINFO luminaire = EmptyLuminaire();
        luminaire.LampPhoto = u"p"_s;
        QVERIFY(IsEmptyLuminaire(luminaire));
        luminaire.UtilizationFactorFormat = u"f"_s;
        QVERIFY(!IsEmptyLuminaire(luminaire));
    }
};

QTEST_GUILESS_MAIN(TestWorkingLuminaires)
#include "test_working_luminaires.moc"
