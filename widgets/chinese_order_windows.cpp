#include <windows.h>

#include <algorithm>
#include <string>

#include "widgets/chinese_order.h"

namespace quorvane {
namespace {

// The system's order under this name is that by pinyin. The toolkit would ask for the order of the user's
// language.
int Order(const QString& left, const QString& right, DWORD options) {
    const std::wstring first = left.toStdWString();
    const std::wstring second = right.toStdWString();
    const int order = ::CompareStringEx(L"zh-CN", options, first.data(), static_cast<int>(first.size()),
                                        second.data(), static_cast<int>(second.size()), nullptr, nullptr, 0);
    return order == 0 || order == CSTR_EQUAL ? left.compare(right) : order - CSTR_EQUAL;
}

}  // namespace

bool PinyinLess(const QString& left, const QString& right) {
    return Order(left, right, 0) < 0;
}

void SortFileNames(QStringList& names) {
    std::sort(names.begin(), names.end(), [](const QString& left, const QString& right) {
        return Order(left, right, SORT_DIGITSASNUMBERS) < 0;
    });
}

}  // namespace quorvane
