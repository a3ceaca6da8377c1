// Sequences of edits on the luminaire page against a plain model of what page, file and photo library must
// hold.
#include <QRandomGenerator>
#include <QTest>
#include <map>
#include <optional>
#include <utility>

#include "tests/editors/shown_luminaires.h"

using namespace quorvane;

namespace {

struct Luminaire {
    int id = 0;
    QString categories, name, count = u"0"_qs, lightSource, photo;
    int efficiency = 0;
    QString picture = {};  // what photo showed when it was chosen or copied
    std::optional<QStringList> pastedFactors = {};

    QString Text() const {
        return u"%1|'%2'|'%3'|%4.0|'%5'|'%6'|'%7'"_qs.arg(id)
            .arg(categories, name)
            .arg(efficiency)
            .arg(count, lightSource, photo);
    }
};

// What the page and the file must hold, said as plainly as possible.
struct World {
    std::map<int, Luminaire> file;
    std::map<int, QStringList> factors;                 // by luminaire
    std::map<int, std::pair<QString, QString>> photos;  // extension and content, by luminaire
    std::map<QString, QString> sources;                 // contents, by path
    QString library;                                    // its folder
    std::vector<Luminaire> rows;
    std::vector<Luminaire> deleted;
    std::optional<Luminaire> copied;
    QStringList copiedFactors;
    QString category = u"1"_qs;
    int lastId = 0;
    int lastProvisional = 0;
    bool modified = false;

    void Load() {
        rows.clear();
        for (const auto& [id, luminaire] : file) {
            if (luminaire.categories.contains(category)) {
                rows.push_back(luminaire);
            }
        }
        lastProvisional = 0;
        deleted.clear();
        modified = false;
    }
    // Whether a photo, in either form, is the luminaire's own picture of that extension.
    bool IsOwn(const QString& photo, int id, const QString& extension) const {
        const QString name = QString::number(id) + extension;
        return photo == Relative(name) || photo == library + name;
    }
    QString Content(const QString& source) const {
        for (const auto& [id, photo] : photos) {
            if (IsOwn(source, id, photo.first)) {
                return photo.second;
            }
        }
        const auto found = sources.find(source);
        return found == sources.end() ? QString() : found->second;
    }
    void Write(Luminaire& luminaire) {
        luminaire.id = luminaire.id < 0 ? ++lastId : luminaire.id;
        const int id = luminaire.id;
        if (luminaire.pastedFactors) {
            factors[id] = *std::exchange(luminaire.pastedFactors, std::nullopt);
        }
        if (luminaire.photo.isEmpty()) {
            photos.erase(id);
        } else {
            const QString extension = luminaire.photo.mid(luminaire.photo.lastIndexOf(u'.'));
            if (!luminaire.picture.isEmpty()) {
                photos[id] = {extension, std::exchange(luminaire.picture, {})};
            }
            luminaire.photo =
                Relative(QString::number(id) + (photos.contains(id) ? photos[id].first : extension));
        }
        file[id] = luminaire;
    }
    void Submit() {
        for (Luminaire& luminaire : rows) {
            Write(luminaire);
        }
        for (const Luminaire& luminaire : deleted) {
            file.erase(luminaire.id);
            factors.erase(luminaire.id);
            photos.erase(luminaire.id);
        }
        deleted.clear();
        modified = false;
    }
    void Paste(size_t row) {
        Luminaire pasted = *copied;
        pasted.id = row < rows.size() ? rows[row].id : --lastProvisional;
        if (row == rows.size()) {
            rows.push_back(pasted);
        }
        rows[row] = pasted;
        rows[row].pastedFactors = copiedFactors;
    }

    void DeleteInVain() {
        for (const Luminaire& luminaire : deleted) {
            if (luminaire.id > 0) {
                rows.push_back(luminaire);
            }
        }
        deleted.clear();
    }
    bool HasUncategorized() const {
        return std::any_of(rows.begin(), rows.end(),
                           [](const auto& row) { return row.categories.isEmpty(); });
    }

    QStringList FileTexts() const {
        QStringList texts;
        for (const auto& entry : file) {
            texts += entry.second.Text();
        }
        return texts;
    }
    QStringList FactorTexts() const {
        QStringList texts;
        for (const auto& [id, values] : factors) {
            for (const QString& value : values) {
                texts += QString::number(id) + u'|' + value;
            }
        }
        return texts;
    }
    QStringList PhotoTexts() const {
        QStringList texts;
        for (const auto& [id, photo] : photos) {
            texts += QString::number(id) + photo.first + u'=' + photo.second;
        }
        texts.sort();
        return texts;
    }
};

class Play {
public:
    explicit Play(quint32 seed) : m_random(seed), m_page(kLists + Rows()) {
        for (int id = 1; id <= 6; ++id) {
            const QString ids = id % 2 == 1 ? u"1"_qs : u"2"_qs;
            m_world.file[id] = {id, ids, u"灯%1"_qs.arg(id), u"1"_qs, id % 2 == 1 ? u"12"_qs : u"14"_qs,
                                {}, id};
            m_world.factors[id] = QStringList(u"0.5"_qs);
        }
        m_world.lastId = 6;
        m_world.library = m_page.Library();
        for (const QString& name : {u"a.jpg"_qs, u"b.bmp"_qs}) {
            const QString path = m_page.WriteFile(m_page.file.Folder() + u'/' + name, name.toUtf8());
            m_world.sources[path] = name;
        }
        ChangeFilter();
    }

    // One step; its name.
    QString Step() {
        const size_t rows = m_world.rows.size();
        const size_t place = static_cast<size_t>(m_random.bounded(static_cast<int>(rows) + 1));
        const int row = static_cast<int>(place) + 1;
        const bool isAppend = place == rows;
        const int kind = m_random.bounded(11);
        if (kind < 2) {
            Edit(place, row);
            return u"edit %1"_qs.arg(row);
        }
        if (kind < 5 && !isAppend) {
            ChoosePhoto(place, row);
            return u"photo %1"_qs.arg(row);
        }
        if (kind == 5) {
            Copy(place, row);
            return u"copy %1"_qs.arg(row);
        }
        if (kind < 8 && m_world.copied) {
            return Paste(place, row);
        }
        if (kind == 8 && !isAppend) {
            m_page.DeleteRow(row);
            m_world.deleted.push_back(m_world.rows[place]);
            m_world.rows.erase(m_world.rows.begin() + row - 1);
            m_world.modified = true;
            return u"delete %1"_qs.arg(row);
        }
        if (kind == 9) {
            ChangeFilter();
            return u"filter"_qs;
        }
        return Submit();
    }

    // What differs; empty when nothing does.
    QString Difference() {
        QStringList shown;
        for (int row = 1; row < m_page.AppendRow(); ++row) {
            shown +=
                u"%1 %2"_qs.arg(m_page.grid->GetItemData(row, 0)).arg(m_page.grid->GetItemText(row, Name)) +
                m_page.grid->GetItemText(row, Photo);
        }
        QStringList expected;
        for (const Luminaire& luminaire : m_world.rows) {
            expected += u"%1 %2"_qs.arg(luminaire.id).arg(luminaire.name) + luminaire.photo;
        }
        const RawDatabase raw = m_page.file.Raw();
        QString found;
        Compare(found, "rows shown", shown, expected);
        Compare(found, "file",
                raw.Rows(u"select ID,LamphouseTypeID,LampName,LuminaireEfficiency,LamphouseCount,"
                         "DefaultLamphouse,LampPhoto from 灯具 order by ID"_qs),
                m_world.FileTexts());
        Compare(found, "factors",
                raw.Rows(u"select LuminaireID,UtilizationFactor from 利用系数 order by LuminaireID,ID"_qs),
                m_world.FactorTexts());
        Compare(found, "photos", m_page.Photos(), m_world.PhotoTexts());
        if (m_page.page->IsModified() != m_world.modified) {
            found += u"modified flag\n"_qs;
        }
        return found;
    }

private:
    static QString Rows() {
        return u"insert into 灯具 select ID,2-ID%2,'灯'||ID,'',ID,0,0,0,'','1',0,0,14-ID%2*2,'','' from "
               "(select 1 as ID union select 2 union select 3 union select 4 union select 5 union select 6);"
               "insert into 利用系数 select ID,ID,70,50,20,1,0.5 from 灯具;"_qs;
    }
    static void Compare(QString& found, const char* what, const QStringList& is,
                        const QStringList& expected) {
        if (is != expected) {
            found += QLatin1String(what) + u":\n  "_qs + is.join(u"\n  "_qs) + u"\nexpected:\n  "_qs +
                     expected.join(u"\n  "_qs) + u'\n';
        }
    }
    void Edit(size_t place, int row) {
        const int value = ++m_value;
        if (place == m_world.rows.size()) {
            m_world.rows.push_back({--m_world.lastProvisional, {}, {}, u"0"_qs, Preset(), {}, 0});
        }
        Luminaire& luminaire = m_world.rows[place];
        const QString text = QString::number(value);
        switch (m_random.bounded(3)) {
            case 0:
                luminaire.name = text;
                m_page.Type(row, Name, text);
                break;
            case 1:
                luminaire.efficiency = value;
                m_page.Type(row, Efficiency, text);
                break;
            default:
                luminaire.count = text;
                m_page.Type(row, LightSourceCount, text);
                break;
        }
        m_world.modified = true;
    }
    QString Preset() const { return m_world.category == u"1"_qs ? u"11"_qs : u"13"_qs; }
    void ChoosePhoto(size_t place, int row) {
        QStringList paths{{}};
        for (const auto& source : m_world.sources) {
            paths += source.first;
        }
        for (const auto& [id, photo] : m_world.photos) {
            paths += m_world.library + QString::number(id) + photo.first;
        }
        const QString path = paths[m_random.bounded(static_cast<int>(paths.size()))];
        m_page.PickPhoto(row, path);
        m_world.modified = m_world.modified || m_world.rows[place].photo != path;
        m_world.rows[place].photo = path;
        m_world.rows[place].picture = m_world.Content(path);
    }
    void Copy(size_t place, int row) {
        m_page.PressButton(CopyButton, row);
        if (place < m_world.rows.size()) {
            m_world.copied = m_world.rows[place];
            m_world.copied->picture = m_world.Content(m_world.copied->photo);
            const auto values = m_world.factors.find(m_world.copied->id);
            m_world.copiedFactors = values == m_world.factors.end() ? QStringList() : values->second;
        }
    }
    // In a file that others hold a paste stores nothing, and all of it at the next submit.
    QString Paste(size_t place, int row) {
        std::optional<RawDatabase> lock = MaybeLock();
        m_page.PressButton(PasteButton, row);
        m_world.Paste(place);
        if (lock) {
            lock.reset();
            return u"paste %1 locked, "_qs.arg(row) + Submit();
        }
        m_world.Write(m_world.rows[place]);
        return u"paste %1"_qs.arg(row);
    }
    QString Submit() {
        if (std::optional<RawDatabase> lock = MaybeLock()) {
            m_page.Submit();
            m_world.DeleteInVain();
        }
        m_page.Submit();
        m_world.Submit();
        return u"submit"_qs;
    }
    std::optional<RawDatabase> MaybeLock() {
        if (m_random.bounded(4) > 0) {
            return std::nullopt;
        }
        RawDatabase lock = m_page.file.Raw();
        lock.Execute(u"begin immediate"_qs);
        return lock;
    }
    void ChangeFilter() {
        const bool submit = m_random.bounded(2) == 0;
        if (m_world.modified) {
            m_page.answers.Plan(submit ? u"是"_qs : u"否"_qs);
            if (submit) {
                m_world.Submit();
            }
            if (submit && m_world.HasUncategorized()) {
                m_page.ChooseCategory(m_world.category == u"1"_qs ? u"白炽灯"_qs : u"荧光灯"_qs);
                return;  // the user is to see which they are
            }
        }
        m_world.category = m_world.category == u"1"_qs ? u"2"_qs : u"1"_qs;
        m_page.ChooseCategory(m_world.category == u"1"_qs ? u"荧光灯"_qs : u"白炽灯"_qs);
        m_world.Load();
    }

    QRandomGenerator m_random;
    ShownLuminaires m_page;
    World m_world;
    int m_value = 100;
};

}  // namespace

class TestLuminaireSequences : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void FileFollowsTheModel_data();
    void FileFollowsTheModel();
};

void TestLuminaireSequences::FileFollowsTheModel_data() {
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 8; ++seed) {
        QTest::addRow("%u", seed) << seed;
    }
}

void TestLuminaireSequences::FileFollowsTheModel() {
    QFETCH(quint32, seed);
    Play play(seed);
    QString steps;
    for (int step = 0; step < 50; ++step) {
        steps += play.Step() + u", "_qs;
        const QString difference = play.Difference();
        QVERIFY2(difference.isEmpty(), qPrintable(steps + u'\n' + difference));
    }
}

QTEST_MAIN(TestLuminaireSequences)
#include "test_luminaire_sequences.moc"
