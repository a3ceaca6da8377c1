// Copying and pasting by the keys of a grid, and the tab-separated text that goes over the clipboard.
#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "grid/grid_ctrl.h"
#include "grid/tab_text.h"

namespace quorvane {

class TestGridClipboard : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void TextsComeBackAsTheyWere();
    void ForeignTextIsReadAsItStands();
    void CopiesWhatIsSelected();
    void PastesOneText();
    void PastesABlock();
    void PastesOnlyChoices();
    void FollowsRowsThatCome();
    void EndsWhenThePlaceIsLost();

private:
    std::unique_ptr<CGridCtrl> m_grid;

    static void PutOnClipboard(const CString& text) { QApplication::clipboard()->setText(text); }
    CString Copied() {
        PutOnClipboard(QStringLiteral("before"));
        QTest::keySequence(m_grid.get(), QKeySequence(QKeySequence::Copy));
        return QApplication::clipboard()->text();
    }
    void Paste(const CString& text) {
        PutOnClipboard(text);
        QTest::keySequence(m_grid.get(), QKeySequence(QKeySequence::Paste));
    }
};

void TestGridClipboard::init() {
    m_grid = std::make_unique<CGridCtrl>(6, 4, 1, 1);
    for (int row = 0; row < 6; ++row) {
        for (int column = 0; column < 4; ++column) {
            m_grid->SetItemText(row, column, QStringLiteral("%1.%2").arg(row).arg(column));
        }
    }
    m_grid->show();
    m_grid->setFocus();
}

void TestGridClipboard::TextsComeBackAsTheyWere() {
    const TextTable table{
        {QStringLiteral("a\tb"), QString(), QStringLiteral(" c ")},
        {QStringLiteral("two\nlines"), QStringLiteral("\r"), QStringLiteral("5\" lamp")},
        {QStringLiteral("\""), QStringLiteral("\"\"\""), QStringLiteral("\"quoted\"")},
        {QStringLiteral("\ufeffmark"), QStringLiteral("\u2028"), QStringLiteral("%s 照度 😀")},
        {QString()},
        {QString(), QString()},
        {QStringLiteral("end")}};
    QCOMPARE(ReadTabText(WriteTabText(table)), table);
}

void TestGridClipboard::ForeignTextIsReadAsItStands() {
    const auto one = [](const CString& text) { return TextTable{{text}}; };
    QVERIFY(ReadTabText({}).empty());
    QCOMPARE(ReadTabText(QStringLiteral("a\r\nb\rc\n")),
             (TextTable{{QStringLiteral("a")}, {QStringLiteral("b")}, {QStringLiteral("c")}}));
    for (const CString& text : {QStringLiteral("\"plain\""), QStringLiteral("\"no end"),
                                QStringLiteral("\"a\" b"), QStringLiteral("a \"b\""), QStringLiteral("\"")}) {
        QCOMPARE(ReadTabText(text), one(text));
    }
    QCOMPARE(ReadTabText(QStringLiteral("\"no\tend\n\"x")),
             (TextTable{{QStringLiteral("\"no"), QStringLiteral("end")}, {QStringLiteral("\"x")}}));
}

void TestGridClipboard::CopiesWhatIsSelected() {
    QCOMPARE(Copied(), QStringLiteral("before"));
    m_grid->FocusWithoutSelecting({2, 2});
    QCOMPARE(Copied(), QStringLiteral("2.2"));
    m_grid->SetSelectedRange({1, 1, 2, 2});
    QCOMPARE(Copied(), QStringLiteral("1.1\t1.2\n2.1\t2.2"));
    m_grid->AddToSelection({5, 3});
    QCOMPARE(Copied(), QStringLiteral("1.1\t1.2\t\n2.1\t2.2\t\n\t\t5.3"));

    m_grid->MergeCells(3, 1, 1, 1);
    m_grid->SetItemText(3, 1, QStringLiteral("a\nb"));
    m_grid->SetSelectedRange({3, 1, 4, 3});
    QCOMPARE(Copied(), QStringLiteral("\"a\nb\"\t\t3.3\n\t\t4.3"));
}

void TestGridClipboard::PastesOneText() {
    QSignalSpy edited(m_grid.get(), &CGridCtrl::EndLabelEdit);
    Paste(QStringLiteral("without focus"));
    m_grid->SetFocusCell({2, 2});
    Paste({});
    QVERIFY(edited.isEmpty());
    Paste(QStringLiteral("  \"2650\" lm "));
    QCOMPARE(m_grid->GetItemText(2, 2), QStringLiteral("  \"2650\" lm "));
    QCOMPARE(edited.takeFirst(), (QVariantList{2, 2}));

    m_grid->SetFocusCell({3, 2});
    QVERIFY(m_grid->BeginEdit(3, 2));
    PutOnClipboard(QStringLiteral("in the editor"));
    QTest::keySequence(m_grid->focusWidget(), QKeySequence(QKeySequence::Paste));
    QVERIFY(m_grid->IsEditing() && edited.isEmpty());
    m_grid->EndEdit();
    QCOMPARE(m_grid->GetItemText(3, 2), QStringLiteral("in the editor"));
}

void TestGridClipboard::PastesABlock() {
    m_grid->SetItemState(4, 3, CellState::ReadOnly);
    m_grid->MergeCells(5, 2, 0, 1);
    m_grid->SetFocusCell({4, 2});
    QSignalSpy edited(m_grid.get(), &CGridCtrl::EndLabelEdit);
    Paste(QStringLiteral("a\tb\tc\nd\te\nf\n"));
    QCOMPARE(m_grid->GetItemText(4, 2), QStringLiteral("a"));
    QCOMPARE(m_grid->GetItemText(4, 3), QStringLiteral("4.3"));
    QCOMPARE(m_grid->GetItemText(5, 2), QStringLiteral("d"));
    QCOMPARE(m_grid->GetItemText(5, 3), QStringLiteral("5.3"));  // covered
    QCOMPARE(edited.count(), 2);
    QCOMPARE(edited.at(1), (QVariantList{5, 2}));
}

void TestGridClipboard::PastesOnlyChoices() {
    m_grid->SetCellType<CGridBtnCellCombo>(2, 1);
    dynamic_cast<CGridBtnCellCombo*>(m_grid->Cell(2, 1))
        ->SetChoices(std::make_shared<const std::vector<CString>>(
            std::vector<CString>{QStringLiteral("one"), QStringLiteral("two")}));
    m_grid->SetFocusCell({2, 1});
    Paste(QStringLiteral("three\tx"));
    QCOMPARE(m_grid->GetItemText(2, 1), QStringLiteral("one"));
    QCOMPARE(m_grid->GetItemText(2, 2), QStringLiteral("x"));
    Paste(QStringLiteral("two"));
    QCOMPARE(m_grid->GetItemText(2, 1), QStringLiteral("two"));
}

void TestGridClipboard::FollowsRowsThatCome() {
    // Below the last row a new one is begun as soon as something stands in it; and once a row comes above.
    bool above = true;
    QObject::connect(m_grid.get(), &CGridCtrl::EndLabelEdit, m_grid.get(), [&](int row, int /*column*/) {
        if (row == m_grid->GetRowCount() - 1) {
            m_grid->InsertRow({});
        }
        if (std::exchange(above, false)) {
            m_grid->InsertRow({}, 1);
        }
    });
    m_grid->SetFocusCell({5, 1});
    Paste(QStringLiteral("a\tb\nc\td\ne"));
    QCOMPARE(m_grid->GetRowCount(), 10);
    QCOMPARE(m_grid->GetItemText(6, 1), QStringLiteral("a"));
    QCOMPARE(m_grid->GetItemText(6, 2), QStringLiteral("b"));
    QCOMPARE(m_grid->GetItemText(7, 2), QStringLiteral("d"));
    QCOMPARE(m_grid->GetItemText(8, 1), QStringLiteral("e"));
}

void TestGridClipboard::EndsWhenThePlaceIsLost() {
    QSignalSpy edited(m_grid.get(), &CGridCtrl::EndLabelEdit);
    const auto onEdit = [this](auto react) {
        return QObject::connect(m_grid.get(), &CGridCtrl::EndLabelEdit, m_grid.get(), react);
    };
    m_grid->SetFocusCell({2, 1});
    QMetaObject::Connection reaction = onEdit([this] { m_grid->SetFocusCell({4, 1}); });
    Paste(QStringLiteral("a\nb\nc"));
    QCOMPARE(edited.count(), 1);
    QObject::disconnect(reaction);

    reaction = onEdit([this] {
        m_grid->DeleteNonFixedRows();
        m_grid->SetRowCount(6);
    });
    Paste(QStringLiteral("a\nb"));
    QCOMPARE(edited.count(), 2);
    QVERIFY(m_grid->GetItemText(4, 1).isEmpty());
    QObject::disconnect(reaction);

    m_grid->SetFocusCell({2, 1});
    onEdit([this] { m_grid.reset(); });
    Paste(QStringLiteral("a\nb"));
    QVERIFY(m_grid == nullptr);
}

}  // namespace quorvane

QTEST_MAIN(quorvane::TestGridClipboard)
#include "test_grid_clipboard.moc"
