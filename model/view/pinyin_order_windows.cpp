#include <windows.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "model/view/pinyin_order.h"

namespace quorvane {
namespace {

// The system's order under this name is that by pinyin. The toolkit would ask for the order of the user's
// language.
std::string Key(const QString& text, DWORD options) {
    const std::wstring wide = text.toStdWString();
    const auto map = [&wide, options](char* key, int size) {
        return ::LCMapStringEx(L"zh-CN", LCMAP_SORTKEY | options, wide.data(), static_cast<int>(wide.size()),
                               reinterpret_cast<wchar_t*>(key), size, nullptr, nullptr, 0);
    };
    std::string key(wide.empty() ? 0 : static_cast<std::size_t>(map(nullptr, 0)), '\0');
    if (!key.empty()) {
        map(key.data(), static_cast<int>(key.size()));
    }
    return key;
}

}  // namespace

bool PinyinLess(const QString& left, const QString& right) {
    const std::wstring first = left.toStdWString();
    const std::wstring second = right.toStdWString();
    const int order = ::CompareStringEx(L"zh-CN", 0, first.data(), static_cast<int>(first.size()),
                                        second.data(), static_cast<int>(second.size()), nullptr, nullptr, 0);
    return order == 0 || order == CSTR_EQUAL ? left < right : order < CSTR_EQUAL;
}

IndexLess PinyinOrder(std::span<const QString> texts, Digits digits) {
    const DWORD options = digits == Digits::AsNumbers ? SORT_DIGITSASNUMBERS : 0;
    auto keys = std::make_shared<std::vector<std::string>>();
    keys->reserve(texts.size());
    for (const QString& text : texts) {
        keys->push_back(Key(text, options));
    }
    return [keys = std::move(keys)](int left, int right) {
        return (*keys)[static_cast<std::size_t>(left)] < (*keys)[static_cast<std::size_t>(right)];
    };
}

}  // namespace quorvane
