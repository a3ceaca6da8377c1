#include "model/view/pinyin.h"

#include <QCollator>
#include <QLocale>
#include <algorithm>
#include <array>
#include <string_view>

namespace quorvane {
namespace {

constexpr char16_t kFirst = u'\u4E00';
constexpr char16_t kLast = u'\u9FA5';

// In the order of pinyin, the characters of each initial begin with this one.
constexpr std::u16string_view kInitials = u"abcdefghjklmnopqrstwxyz";
constexpr std::u16string_view kFirstOfInitial = u"阿八嚓咑妸发旮哈丌咔垃妈嗯喔妑七呥仨他屲夕丫帀";
static_assert(kInitials.size() == kFirstOfInitial.size());

char16_t Lookup(char16_t character) {
    static const QCollator collator(QLocale(QLocale::Chinese, QLocale::China));
    const auto isBefore = [](char16_t left, char16_t right) {
        return collator.compare(QStringView(&left, 1), QStringView(&right, 1)) < 0;
    };
    const auto next = std::upper_bound(kFirstOfInitial.begin(), kFirstOfInitial.end(), character, isBefore);
    return next == kFirstOfInitial.begin()
               ? character
               : kInitials[static_cast<std::size_t>(next - kFirstOfInitial.begin()) - 1];
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
