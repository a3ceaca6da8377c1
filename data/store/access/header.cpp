#include "data/store/access/header.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr QByteArrayView kStart("\0\1\0\0", 4);
constexpr QByteArrayView kJet("Standard Jet DB");
constexpr QByteArrayView kAce("Standard ACE DB");
constexpr qsizetype kEngine = 4;
constexpr qsizetype kVersion = 20;
constexpr quint8 kJet3 = 0;
constexpr quint8 kJet4 = 1;

// What follows stands behind a mask that is the same in every file.
constexpr qsizetype kMasked = 24;
constexpr qsizetype kMaskedLength = 128;
constexpr qsizetype kCodePage = 60;
constexpr qsizetype kEncryptionKey = 62;
constexpr qsizetype kPassword = 66;
constexpr qsizetype kPasswordLength = 40;
constexpr qsizetype kSortOrder = 110;
constexpr qsizetype kSortVersion = 113;
constexpr qsizetype kCreated = 114;

// The first bytes of the RC4 stream of a fixed key.
std::array<quint8, kMaskedLength> Mask() {
    constexpr std::array<quint8, 4> kKey{0xC7, 0xDA, 0x39, 0x6B};
    std::array<quint8, 256> state{};
    std::iota(state.begin(), state.end(), quint8{0});
    quint8 other = 0;
    for (std::size_t index = 0; index < state.size(); ++index) {
        other = static_cast<quint8>(other + state[index] + kKey[index % kKey.size()]);
        std::swap(state[index], state[other]);
    }
    std::array<quint8, kMaskedLength> mask{};
    quint8 index = 0;
    other = 0;
    for (quint8& byte : mask) {
        ++index;
        other = static_cast<quint8>(other + state[index]);
        std::swap(state[index], state[other]);
        byte = state[static_cast<quint8>(state[index] + state[other])];
    }
    return mask;
}

QByteArray Unmasked(const Page& page) {
    QByteArray bytes(page.data(), kPageSize);
    const auto mask = Mask();
    for (qsizetype index = 0; index < kMaskedLength; ++index) {
        char& byte = bytes[kMasked + index];
        byte = static_cast<char>(byte ^ mask[static_cast<std::size_t>(index)]);
    }
    return bytes;
}

// The password is masked once more, by the day on which the file was made.
bool HasPassword(const QByteArray& bytes) {
    const double created = std::bit_cast<double>(ReadNumber(bytes, kCreated, 8));
    const bool isDate = std::abs(created) < std::numeric_limits<qint32>::max();
    const auto day = static_cast<quint32>(isDate ? static_cast<qint32>(created) : 0);
    for (qsizetype offset = 0; offset < kPasswordLength; offset += 4) {
        if (ReadU32(bytes, kPassword + offset) != day) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool IsAccessFile(const QByteArray& head) {
    const QByteArrayView engine = QByteArrayView(head).sliced(std::min(kEngine, head.size()));
    return head.startsWith(kStart) && (engine.startsWith(kJet) || engine.startsWith(kAce));
}

Header ReadHeader(const Page& page) {
    const QByteArray raw(page.data(), kPageSize);
    if (!IsAccessFile(raw)) {
        throw AccessError(u"the file is no Access file"_s);
    }
    const quint8 version = ReadU8(raw, kVersion);
    if (version == kJet3) {
        throw AccessError(u"files of Access 97 cannot be opened"_s);
    }
    if (version != kJet4 || !QByteArrayView(raw).sliced(kEngine).startsWith(kJet)) {
        throw AccessError(u"files of Access 2007 and later cannot be opened"_s);
    }
    const QByteArray bytes = Unmasked(page);
    if (ReadU32(bytes, kEncryptionKey) != 0) {
        throw AccessError(u"the file is encrypted"_s);
    }
    Header header;
    header.codePage = ReadU16(bytes, kCodePage);
    header.sortOrder = {ReadU16(bytes, kSortOrder), ReadU8(bytes, kSortVersion)};
    header.hasPassword = HasPassword(bytes);
    return header;
}

}  // namespace quorvane::access
