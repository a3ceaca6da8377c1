// The pages of an Access file held in memory, for tests that need no disk.
#pragma once

#include <QFile>
#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "data/store/access/disk/pages.h"

class MemoryPages : public quorvane::access::Pages {
public:
    using Page = quorvane::access::Page;
    using PageNumber = quorvane::access::PageNumber;

    explicit MemoryPages(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            throw std::runtime_error("a fixture is missing");
        }
        const QByteArray bytes = file.readAll();
        for (qsizetype at = 0; at < bytes.size(); at += quorvane::access::kPageSize) {
            std::memcpy(Write(Append()).data(), bytes.constData() + at, quorvane::access::kPageSize);
        }
    }

    PageNumber Count() const override { return static_cast<PageNumber>(m_pages.size()); }
    quorvane::access::PagePointer Read(PageNumber page) const override {
        if (page >= Count()) {
            quorvane::access::ThrowDamaged(QStringLiteral("there is no page %1").arg(page));
        }
        return m_pages[page];
    }
    Page& Write(PageNumber page) override {
        m_pages.at(page) = std::make_shared<Page>(*m_pages.at(page));
        return *m_pages[page];
    }
    PageNumber Append() override {
        m_pages.push_back(std::make_shared<Page>());
        return Count() - 1;
    }

private:
    std::vector<std::shared_ptr<Page>> m_pages;
};
