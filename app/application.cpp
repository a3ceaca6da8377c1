#include "app/application.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>
#include <QLocale>
#include <QTranslator>

#include "app/edit_keeper.h"
#include "app/file_notice.h"
#include "app/main_dialog.h"
#include "data/store/store_factory.h"
#include "editors/first_paint.h"
#include "editors/light_source_page.h"
#include "editors/luminaire/luminaire_page.h"
#include "editors/requirement_page.h"
#include "widgets/icons.h"
#include "widgets/message_box.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

// 9 points of the first of these families that is installed. A Chinese family comes first because its digits
// then match its characters. A list of families in the font itself would make the toolkit search substitutes
// for each missing one.
QFont InterfaceFont() {
    QFont font;
    for (const QString& family :
         {u"宋体"_s, u"SimSun"_s, u"WenQuanYi Micro Hei"_s, u"Noto Sans CJK SC"_s, u"WenQuanYi Zen Hei"_s}) {
        if (QFontDatabase::hasFamily(family)) {
            font.setFamily(family);
            break;
        }
    }
    font.setPointSize(9);
    return font;
}

// The texts of the toolkit's own menus and dialogs.
void InstallChineseTexts(QApplication& application) {
    auto* translator = new QTranslator(&application);
    if (translator->load(u":/translations/qtbase_zh_CN.qm"_s)) {
        application.installTranslator(translator);
    }
}

// Asked once a run, before the first submit.
bool GoOnWithoutCopy(const QString& reason) {
    return ShowMessage(nullptr, u"提交前未能备份数据库文件：\n%1\n\n不备份，继续提交吗？"_s.arg(reason), {},
                       MessageButtons::YesNo) == MessageAnswer::Yes;
}

}  // namespace

CQuorvaneApp::CQuorvaneApp(QApplication& application)
    : m_application(application),
      m_database(BackedUpStore(GoOnWithoutCopy), QCoreApplication::applicationFilePath()) {
    QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
    QCoreApplication::setApplicationName(u"照度计算数据库维护"_s);
    application.setWindowIcon(LoadIcon(IconId::Application));
    application.setFont(InterfaceFont());
    InstallChineseTexts(application);
}

CQuorvaneApp::~CQuorvaneApp() = default;

void CQuorvaneApp::Run() {
    if (!m_database.Connect()) {
        ShowMessage(nullptr, u"数据库连接失败!"_s);
        return;
    }
    ReferenceLists lists(m_database);
    CQuorvaneDlg dialog({
                            .lightSources = [&](QWidget* parent) -> CPage* {
                                return new CQuorvaneLamphouseDlg(m_database, lists, parent);
                            },
                            .luminaires = [&](QWidget* parent) -> CPage* {
                                return new CQuorvaneLuminaireDlg(m_database, lists, parent);
                            },
                            .requirements = [this](QWidget* parent) -> CPage* {
                                return new CQuorvaneDemandDlg(m_database, parent);
                            },
                        },
                        m_application.arguments().constLast());
    const FileNotice notice(m_database, dialog);
    EditKeeper keeper({dialog.Pages().begin(), dialog.Pages().end()}, m_database.GetDatabasePath(), dialog);
    AfterFirstPaint(dialog, [&keeper] { keeper.Start(); });
    dialog.exec();
    keeper.Finish();
    m_database.Disconnect();
}

}  // namespace quorvane
