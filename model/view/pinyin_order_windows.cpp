#include <windows.h>

#include <memory>
#include <string>
#include <utility>

#include "model/view/pinyin_order.h"

namespace quorvane {
namespace {

// The system's order under this name is that by pinyin. The toolkit would ask for the order of the user's
// language.
std::string Key(const CString& text) {
    const std::wstring wide = text.toStdWString();
    const auto map = [&wide](char* key, int size) {
        return ::LCMapStringEx(L"zh-CN", LCMAP_SORTKEY, wide.data(), static_cast<int>(wide.size()),
                               reinterpret_cast<wchar_t*>(key), size, nullptr, nullptr, 0);
    };
    std::string key(wide.empty() ? 0 : static_cast<std::size_t>(map(nullptr, 0)), '\0');
    if (!key.empty()) {
        map(key.data(), static_cast<int>(key.size()));
    }
    return key;
}

}  // namespace

IndexLess PinyinOrder(const std::vector<CString>& texts) {
    auto keys = std::make_shared<std::vector<std::string>>();
    keys->reserve(texts.size());
    for (const CString& text : texts) {
        keys->push_back(Key(text));
    }
    return [keys = std::move(keys)](int left, int right) {
        return (*keys)[static_cast<std::size_t>(left)] < (*keys)[static_cast<std::size_t>(right)];
    };
}

}  // namespace quorvane
