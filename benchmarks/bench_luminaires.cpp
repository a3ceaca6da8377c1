// Filling the luminaire page: time and memory must grow with the rows alone, whatever the number of light
// sources that the cells offer. Submitting beside a full photo library is measured with it. Exits with 1 when
// a target is missed.
#include <malloc.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "benchmarks/report.h"
#include "data/store/store_factory.h"
#include "editors/luminaire/luminaire_page.h"
#include "tools/sample_database.h"
#include "widgets/dialog_template.h"

namespace {

using namespace quorvane;

constexpr int kFilter = 1006;
constexpr int kCategories = 4;
constexpr int kRounds = 9;
constexpr int kPhotos = 1000;

// Every luminaire takes the light sources of two categories and has one of them as its default.
SampleData MakeData(int luminaires, int lightSourcesACategory) {
    SampleData data;
    for (int category = 1; category <= kCategories; ++category) {
        data.Categories.push_back({category, QStringLiteral("类别%1").arg(category)});
    }
    for (int id = 1; id <= kCategories * lightSourcesACategory; ++id) {
        tagLAMPHOUSEINFO lightSource;
        lightSource.ID = id;
        lightSource.LamphouseType = 1 + id % kCategories;
        lightSource.LamphouseName = QStringLiteral("光源");
        lightSource.LamphouseModel = QStringLiteral("TL5-%1").arg(id);
        data.LightSources.push_back(lightSource);
    }
    for (int id = 1; id <= luminaires; ++id) {
        tagLUMINAIREINFO luminaire;
        luminaire.ID = id;
        luminaire.LamphouseTypeID = QStringLiteral("1,%1").arg(2 + id % (kCategories - 1));
        luminaire.LampName = QStringLiteral("灯具%1").arg(id);
        luminaire.LampModel = QStringLiteral("型号%1").arg(id);
        luminaire.LamphouseCount = QStringLiteral("1");
        luminaire.DefaultLamphouse = QString::number(kCategories * (1 + id % (lightSourcesACategory - 1)));
        data.Luminaires.push_back(luminaire);
    }
    return data;
}

double Bytes() {
    return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd);
}

// A page over a database of its own, still without a category.
class Place {
public:
    Place(int luminaires, int lightSourcesACategory)
        : m_database(CreateStoreConnection, m_folder.filePath(QStringLiteral("bin/quorvane"))) {
        WriteSampleDatabase(MakeData(luminaires, lightSourcesACategory),
                            m_folder.filePath(QStringLiteral("Vexal/灯具数据库.mdb")));
        if (!m_database.Connect() || !m_database.IsSound()) {
            std::fprintf(stderr, "the database did not open\n");
            std::exit(2);
        }
        m_page = std::make_unique<CQuorvaneLuminaireDlg>(m_database, m_lists, nullptr);
        m_page->resize(820, 520);
        m_page->show();
        QApplication::processEvents();
    }

    void FillLibrary() const {
        const QDir library(m_folder.filePath(QStringLiteral("Vexal/LuminairePhotoLib")));
        library.mkpath(QStringLiteral("."));
        for (int number = 1; number <= kPhotos; ++number) {
            QFile photo(library.filePath(QStringLiteral("%1.jpg").arg(100000 + number)));
            photo.open(QIODevice::WriteOnly);
        }
    }
    // Loads and shows the category that all luminaires have.
    void Fill() const {
        auto* filter = DialogItem<CEaseComboBox>(m_page.get(), kFilter);
        filter->setCurrentIndex(-1);
        filter->SelectString(QStringLiteral("类别1"));
        Q_EMIT filter->SelectionChanged();
        QApplication::processEvents();
    }
    double FillTime() const {
        return Milliseconds([this] { Fill(); });
    }
    double SubmitTime() const {
        return Milliseconds([this] { m_page->Submit(); });
    }
    int Rows() const { return m_page->findChild<CGridCtrl*>()->GetRowCount() - 2; }

private:
    QTemporaryDir m_folder;
    CLightingDatabase m_database;
    ReferenceLists m_lists{m_database};
    std::unique_ptr<CQuorvaneLuminaireDlg> m_page;
};

// What one more row costs, the lists themselves not counted.
double BytesARow(int lightSourcesACategory) {
    double bytes[2];
    const int rows[2] = {1000, 4000};
    for (int size = 0; size < 2; ++size) {
        const Place place(rows[size], lightSourcesACategory);
        const double before = Bytes();
        place.Fill();
        bytes[size] = Bytes() - before;
        if (place.Rows() != rows[size]) {
            std::fprintf(stderr, "%d rows are shown instead of %d\n", place.Rows(), rows[size]);
            std::exit(2);
        }
    }
    return (bytes[1] - bytes[0]) / (rows[1] - rows[0]);
}

}  // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    const Place large(4000, 500);
    const Place small(2000, 500);
    std::vector<double> largeTimes;
    std::vector<double> smallTimes;
    for (int round = 0; round < kRounds; ++round) {
        largeTimes.push_back(large.FillTime());
        smallTimes.push_back(small.FillTime());
    }
    bool met = Report("filling 4,000 luminaires (2,000)", Median(largeTimes), Median(smallTimes), "ms", 2.2);

    const double few = BytesARow(50);
    met = Report("a row beside 500 light sources a category (50)", BytesARow(500), few, "bytes", 1.2) && met;

    const std::vector<double> without{large.SubmitTime(), large.SubmitTime(), large.SubmitTime()};
    large.FillLibrary();
    const std::vector<double> withPhotos{large.SubmitTime(), large.SubmitTime(), large.SubmitTime()};
    met = Report("submitting 4,000 beside 1,000 photos (none)", Median(withPhotos), Median(without), "ms",
                 1.2) &&
          met;
    return met ? 0 : 1;
}
