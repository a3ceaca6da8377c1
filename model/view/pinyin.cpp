#include "model/view/pinyin.h"

#include <array>
#include <string_view>
#include <vector>

#include "model/view/pinyin_order.h"

namespace quorvane {
namespace {

constexpr char16_t kFirst = u'\u4E00';
constexpr char16_t kLast = u'\u9FA5';

// In the order of pinyin, the characters of each initial begin with this one.
constexpr std::u16string_view kInitials = u"abcdefghjklmnopqrstwxyz";
constexpr std::u16string_view kFirstOfInitial = u"阿八嚓咑妸发旮哈丌咔垃妈拏噢妑七呥仨他屲夕丫帀";
static_assert(kInitials.size() == kFirstOfInitial.size());

char16_t Lookup(char16_t character) {
    std::vector<QString> texts;
    for (const char16_t first : kFirstOfInitial) {
        texts.emplace_back(QChar(first));
    }
    texts.emplace_back(QChar(character));
    const auto count = static_cast<int>(kInitials.size());
    const IndexLess less = PinyinOrder(texts);
    int initials = 0;  // that begin with the character or before it
    while (initials < count && !less(count, initials)) {
        ++initials;
    }
    return initials == 0 ? character : kInitials[static_cast<std::size_t>(initials) - 1];
}

}  // namespace

char16_t PinyinInitial(QChar character) {
    const char16_t code = character.unicode();
    if (code < kFirst || code > kLast) {
        return character.toLower().unicode();
    }
    static std::array<char16_t, kLast - kFirst + 1> known{};
    char16_t& initial = known[static_cast<std::size_t>(code - kFirst)];
    if (initial == 0) {
        initial = Lookup(code);
    }
    return initial;
}

}  // namespace quorvane
