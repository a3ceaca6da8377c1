// CQuorvaneDlg: the main window, a frame of three tab pages with the buttons Submit, Delete and Exit.
#pragma once

#include <QDialog>
#include <array>
#include <functional>

#include "editors/page.h"

class QTabWidget;

namespace quorvane {

// The makers of the pages, in the order of the tabs. Each makes its page as a child of parent.
struct MainDialogPages {
    using Maker = std::function<CPage*(QWidget* parent)>;
    Maker lightSources;
    Maker luminaires;
    Maker requirements;
};

class CQuorvaneDlg : public QDialog {
    Q_OBJECT

public:
    // selector is the last command-line argument: "灯具管理器" shows the luminaires first, "照度管理器" the
    // requirements, anything else the light sources.
    CQuorvaneDlg(const MainDialogPages& pages, const QString& selector);
    ~CQuorvaneDlg() override;

    // By tab index.
    const std::array<CPage*, 3>& Pages() const { return m_pages; }

    // Closes the window like its close box: asks first when a page holds unsubmitted edits.
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void DecorateButtons();
    void PlacePagesOnWholePixels();
    void AddKeys();
    void AddCommand(const QString& text, const QKeySequence& key, void (CQuorvaneDlg::*run)());
    void ShowTab(int step);
    void OnSubmit();
    void OnDelete();
    void OnReload();
    bool AskBeforeClosing();
    bool SubmitAll();
    CPage& CurrentPage() const;
    void ShowEdits();

    QTabWidget* m_tabs = nullptr;
    std::array<CPage*, 3> m_pages{};  // children of m_tabs, by tab index
};

}  // namespace quorvane
