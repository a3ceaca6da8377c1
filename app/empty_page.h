// A page that has nothing to edit yet and says so. It holds no data, so every request is met by doing
// nothing.
#pragma once

#include <QLabel>
#include <QVBoxLayout>

#include "editors/page.h"

namespace quorvane {

class EmptyPage : public CPage {
public:
    explicit EmptyPage(QWidget* parent) : CPage(parent) {
        auto* layout = new QVBoxLayout(this);
        layout->addWidget(new QLabel(QStringLiteral("本页尚未提供编辑功能。"), this), 0, Qt::AlignCenter);
    }

    bool IsModified() const override { return false; }
    void EndEditing() override {}
    bool Submit() override { return true; }
    void Refresh() override {}
    bool DeleteSelected() override { return false; }
};

}  // namespace quorvane
