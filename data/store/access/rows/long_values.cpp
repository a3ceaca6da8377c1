#include "data/store/access/rows/long_values.h"

#include <algorithm>

#include "data/store/access/rows/data_page.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr qsizetype kHead = 12;
constexpr quint32 kLengthMask = 0x3FFFFFFF;
constexpr quint32 kInline = 0x80000000;
constexpr quint32 kSingle = 0x40000000;
constexpr qsizetype kLongestInline = 64;
constexpr qsizetype kLongestPiece = 4076;
constexpr qsizetype kNextPiece = 4;  // the address of the next piece in front of a chained one
constexpr qsizetype kLeastRoom = 32;
constexpr int kPagesTried = 16;

quint32 Kind(QByteArrayView head) {
    return ReadU32(head, 0) & ~kLengthMask;
}

QByteArray Head(quint32 kind, qsizetype length, RowAddress piece) {
    QByteArray head(kHead, '\0');
    const ByteSpan bytes(head.data(), static_cast<std::size_t>(head.size()));
    WriteU32(bytes, 0, kind | static_cast<quint32>(length));
    WriteRowAddress(bytes, 4, piece);
    return head;
}

QByteArrayView Piece(const Page& page, RowAddress address) {
    const Slot slot = ReadSlot(page, address.row);
    if (slot.state != SlotState::Row || PageOwner(page) != kLongValueOwner) {
        ThrowDamaged(u"a long value misses a piece"_s);
    }
    return SlotBytes(page, slot);
}

QByteArray Read(const Pages& pages, QByteArrayView head, std::vector<RowAddress>& pieces) {
    const auto length = static_cast<qsizetype>(ReadU32(head, 0) & kLengthMask);
    const quint32 kind = Kind(head);
    QByteArray value;
    if (length > kPageSize * qint64{pages.Count()}) {
        ThrowDamaged(u"a long value is longer than the file"_s);
    }
    if ((kind & kInline) != 0) {
        value = Part(head, kHead, head.size() - kHead).toByteArray();
    } else {
        for (RowAddress next = ReadRowAddress(head, 4); next.page != 0 && value.size() <= length;) {
            const PagePointer page = pages.Read(next.page);
            const QByteArrayView piece = Piece(*page, next);
            const bool chained = kind != kSingle;
            pieces.push_back(next);
            next = chained ? ReadRowAddress(piece, 0) : RowAddress();
            value += chained ? piece.sliced(kNextPiece) : piece;
            if (chained && piece.size() == kNextPiece) {
                ThrowDamaged(u"a long value has an empty piece"_s);
            }
        }
    }
    if (value.size() != length) {
        ThrowDamaged(u"a long value is not as long as it says"_s);
    }
    return value;
}

}  // namespace

QByteArray ReadLongValue(const Pages& pages, QByteArrayView head) {
    std::vector<RowAddress> pieces;
    return Read(pages, head, pieces);
}

std::vector<RowAddress> LongValuePieces(const Pages& pages, QByteArrayView head) {
    std::vector<RowAddress> pieces;
    Read(pages, head, pieces);
    return pieces;
}

LongValueWriter::LongValueWriter(Pages& pages, PageAllocator& allocator, RowAddress owned,
                                 RowAddress withRoom)
    : m_pages(pages), m_allocator(allocator), m_owned(pages, owned), m_withRoom(pages, withRoom) {}

QByteArray LongValueWriter::Store(const QByteArray& value) {
    if (value.size() <= kLongestInline) {
        return Head(kInline, value.size(), {}) + value;
    }
    if (value.size() > static_cast<qsizetype>(kLengthMask)) {
        throw AccessError(u"内容过长"_s);
    }
    if (value.size() <= kLongestPiece) {
        return Head(kSingle, value.size(), AddPiece(value));
    }
    // From the last piece to the first, which alone may be written without knowing what follows it.
    constexpr qsizetype kData = kLongestPiece - kNextPiece;
    RowAddress next;
    for (qsizetype at = (value.size() - 1) / kData * kData; at >= 0; at -= kData) {
        QByteArray piece(kNextPiece, '\0');
        WriteRowAddress(ByteSpan(piece.data(), kNextPiece), 0, next);
        next = AddPiece(piece + value.mid(at, kData));
    }
    return Head(0, value.size(), next);
}

RowAddress LongValueWriter::AddPiece(const QByteArray& piece) {
    const PageNumber number = PageWithRoom(piece.size());
    Page& page = m_pages.Write(number);
    const int row = AddRow(page, piece, SlotState::Row);
    if (FreeBytes(page) < kLeastRoom || CountSlots(page) == kMostRows) {
        m_withRoom.Remove(number);
    }
    return {number, static_cast<quint8>(row)};
}

// Only the last pages are tried. Taking a new page too early costs less than looking at all pages.
PageNumber LongValueWriter::PageWithRoom(qsizetype length) {
    std::optional<PageNumber> number = m_withRoom.LastBelow(m_pages.Count());
    for (int tried = 0; number && tried < kPagesTried; ++tried) {
        const PagePointer page = m_pages.Read(*number);
        if (PageOwner(*page) == kLongValueOwner && HasRoomFor(*page, length)) {
            return *number;
        }
        number = m_withRoom.LastBelow(*number);
    }
    const PageNumber added = m_allocator.Allocate(m_owned);
    MakeDataPage(m_pages.Write(added), kLongValueOwner);
    m_withRoom.Add(added, m_allocator);
    return added;
}

void LongValueWriter::Release(QByteArrayView head) {
    // A damaged chain is not followed while pieces are removed.
    for (const RowAddress piece : LongValuePieces(m_pages, head)) {
        RemovePiece(piece);
    }
}

void LongValueWriter::RemovePiece(RowAddress piece) {
    if (!m_owned.Contains(piece.page)) {
        ThrowDamaged(u"a piece of a long value stands on a page of another column"_s);
    }
    Page& page = m_pages.Write(piece.page);
    ReplaceRow(page, piece.row, {}, SlotState::Deleted);
    bool empty = true;
    for (int row = 0; row < CountSlots(page); ++row) {
        empty = empty && ReadSlot(page, row).state == SlotState::Deleted;
    }
    if (empty) {
        m_withRoom.Remove(piece.page);
        m_allocator.Release(piece.page, m_owned);
    } else if (CountSlots(page) < kMostRows) {
        m_withRoom.Add(piece.page, m_allocator);
    }
}

}  // namespace quorvane::access
