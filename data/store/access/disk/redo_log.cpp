#include "data/store/access/disk/redo_log.h"

#include <QRandomGenerator>
#include <algorithm>
#include <bit>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

// Head: magic, size and stamp of the file, fingerprint of its page 0, a number that no other log has, and the
// fingerprint of all these.
constexpr QByteArrayView kMagic("quorvane redo 1\n");
constexpr qsizetype kHeadSize = 16 + 5 * 8;
// Record: u32 length of the body, u8 kind, body, and its fingerprint, chained to that of the record before.
constexpr qsizetype kRecordFrame = 4 + 1 + 8;
constexpr quint8 kStatement = 1;
constexpr quint8 kMark = 2;
constexpr qint64 kGreatestLog = (qint64{1} << 31) - 1;

QByteArrayView View(const Page& page) {
    return {page.data(), kPageSize};
}

// Ranges of bytes in which two pages differ. Ranges with less than a word between them are joined.
std::vector<std::pair<qsizetype, qsizetype>> Differences(const Page& before, const Page& after) {
    constexpr qsizetype kWord = 8;
    std::vector<std::pair<qsizetype, qsizetype>> ranges;
    for (qsizetype at = 0; at < kPageSize; at += kWord) {
        const auto index = static_cast<std::size_t>(at);
        if (std::memcmp(&before[index], &after[index], kWord) == 0) {
            continue;
        }
        if (!ranges.empty() && ranges.back().first + ranges.back().second == at) {
            ranges.back().second += kWord;
        } else {
            ranges.emplace_back(at, kWord);
        }
    }
    return ranges;
}

void AppendChange(QByteArray& body, const PageChange& change) {
    static const Page kZeros{};
    const Page& before = change.before ? *change.before : kZeros;
    AppendNumber(body, 4, change.page);
    AppendNumber(body, 1, (change.first ? 1U : 0U) | (change.before ? 2U : 0U));
    if (change.first && change.before) {
        for (const quint64 sector : FingerprintSectors(before)) {
            AppendNumber(body, 8, sector);
        }
    }
    AppendNumber(body, 8, Fingerprint(View(*change.after)));
    const auto ranges = Differences(before, *change.after);
    AppendNumber(body, 2, ranges.size());
    for (const auto& [offset, length] : ranges) {
        AppendNumber(body, 2, static_cast<quint64>(offset));
        AppendNumber(body, 2, static_cast<quint64>(length));
        body += View(*change.after).sliced(offset, length);
    }
}

// Takes a log's bytes from front to end.
class Reader {
public:
    explicit Reader(QByteArrayView bytes) : m_bytes(bytes) {}
    quint64 Number(qsizetype count) { return ReadNumber(Next(count), 0, count); }
    QByteArrayView Next(qsizetype count) {
        const QByteArrayView part = Part(m_bytes, m_at, count);
        m_at += count;
        return part;
    }
    qsizetype Left() const { return m_bytes.size() - m_at; }

private:
    QByteArrayView m_bytes;
    qsizetype m_at = 0;
};

void TakeChange(Reader& reader, FoundLog& log) {
    const auto page = static_cast<PageNumber>(reader.Number(4));
    const quint64 flags = reader.Number(1);
    LoggedPage& logged = log.pages[page];
    logged.inFile = (flags & 2) != 0;
    if (flags == 3) {
        for (quint64& sector : logged.base) {
            sector = reader.Number(8);
        }
    }
    logged.result = reader.Number(8);
    for (quint64 count = reader.Number(2); count > 0; --count) {
        const auto offset = static_cast<quint16>(reader.Number(2));
        const QByteArrayView bytes = reader.Next(static_cast<qsizetype>(reader.Number(2)));
        logged.patches.push_back({offset, bytes.toByteArray()});
    }
}

// False at the log's end, or at a record that is not whole.
bool TakeRecord(Reader& reader, quint64& chain, FoundLog& log) {
    if (reader.Left() < kRecordFrame) {
        return false;
    }
    const auto length = static_cast<qsizetype>(reader.Number(4));
    const auto kind = static_cast<quint8>(reader.Number(1));
    if (length > reader.Left() - 8) {
        return false;
    }
    const QByteArrayView body = reader.Next(length);
    chain = Fingerprint(body, chain + kind);
    if (reader.Number(8) != chain) {
        return false;
    }
    log.marked = kind == kMark;
    if (kind == kStatement) {
        Reader changes(body);
        log.pageCount = static_cast<PageNumber>(changes.Number(4));
        ++log.statements;
        while (changes.Left() > 0) {
            TakeChange(changes, log);
        }
    }
    return true;
}

}  // namespace

// Multiplies and turns word by word: fast, and no two states of a file that can occur give the same number.
quint64 Fingerprint(QByteArrayView bytes, quint64 seed) {
    constexpr quint64 kFactor = 0x9E3779B97F4A7C15ULL;
    constexpr qsizetype kWord = 8;
    quint64 state = seed ^ (static_cast<quint64>(bytes.size()) * kFactor);
    for (; bytes.size() >= kWord; bytes = bytes.sliced(kWord)) {
        quint64 word = 0;
        std::memcpy(&word, bytes.data(), kWord);
        state = std::rotl((state ^ word) * kFactor, 29);
    }
    for (const char byte : bytes) {
        state = std::rotl((state ^ static_cast<quint8>(byte)) * kFactor, 29);
    }
    return (state ^ state >> 32) * kFactor;
}

SectorFingerprints FingerprintSectors(const Page& page) {
    SectorFingerprints fingerprints{};
    for (std::size_t sector = 0; sector < fingerprints.size(); ++sector) {
        fingerprints[sector] =
            Fingerprint(View(page).sliced(static_cast<qsizetype>(sector) * kSectorSize, kSectorSize));
    }
    return fingerprints;
}

RedoLog::RedoLog(FileSystem& files, const QString& path, const LogBase& base)
    : m_files(&files), m_path(path), m_head(kMagic.toByteArray()) {
    AppendNumber(m_head, 8, static_cast<quint64>(base.stamp.size));
    AppendNumber(m_head, 8, static_cast<quint64>(base.stamp.modified));
    AppendNumber(m_head, 8, base.firstPage);
    AppendNumber(m_head, 8, QRandomGenerator::global()->generate64());
    m_chain = Fingerprint(m_head);
    AppendNumber(m_head, 8, m_chain);
}

RedoLog::RedoLog(FileSystem& files, const QString& path, const FoundLog& found)
    : m_files(&files),
      m_path(path),
      m_file(files.Open(path, FileSystem::Mode::ReadWrite)),
      m_isMade(true),
      m_end(found.end),
      m_chain(found.chain) {}

void RedoLog::AppendStatement(const std::vector<PageChange>& changes, PageNumber pageCount) {
    QByteArray body;
    AppendNumber(body, 4, pageCount);
    for (const PageChange& change : changes) {
        AppendChange(body, change);
    }
    AppendRecord(kStatement, body);
}

void RedoLog::MarkAndSync() {
    AppendRecord(kMark, QByteArray());
    if (m_syncFailed) {
        WriteAgain();
    }
    m_syncFailed = true;
    m_file->Sync();
    m_files->SyncFolder(m_path);
    m_syncFailed = false;
}

// After a failed sync a system takes what it could not write for written.
void RedoLog::WriteAgain() {
    QByteArray bytes(static_cast<qsizetype>(m_end), Qt::Uninitialized);
    m_file->Read(0, ByteSpan(bytes.data(), static_cast<std::size_t>(bytes.size())));
    m_file->Write(0, bytes);
}

void RedoLog::Remove() {
    m_file.reset();
    if (m_isMade) {
        m_files->Remove(m_path);
        m_isMade = false;
    }
}

// The end moves on only when all is written. What a failed write left behind it is overwritten by the next
// record, or does not fit the chain.
void RedoLog::AppendRecord(quint8 kind, const QByteArray& body) {
    const quint64 chain = Fingerprint(body, m_chain + kind);
    QByteArray record = m_end == 0 ? m_head : QByteArray();
    AppendNumber(record, 4, static_cast<quint64>(body.size()));
    AppendNumber(record, 1, kind);
    record += body;
    AppendNumber(record, 8, chain);
    if (m_file == nullptr) {
        // A log that could not be removed is still there.
        m_file = m_files->Open(m_path, m_isMade ? FileSystem::Mode::ReadWrite : FileSystem::Mode::CreateNew);
        m_isMade = true;
    }
    m_file->Write(m_end, record);
    m_end += record.size();
    m_chain = chain;
}

FoundLog ReadLog(const File& file) {
    const qint64 length = file.Stamp().size;
    FoundLog log;
    if (length > kGreatestLog) {
        ThrowDamaged(u"its log is too long"_s);
    }
    const auto size = static_cast<qsizetype>(length);
    QByteArray bytes(size, Qt::Uninitialized);
    file.Read(0, ByteSpan(bytes.data(), static_cast<std::size_t>(size)));
    // The program or the power went before the head was written; nothing can have been built on such a log.
    const QByteArrayView head = QByteArrayView(bytes).first(std::min(size, kHeadSize));
    if (head.size() < kHeadSize ||
        std::all_of(head.begin(), head.end(), [](char byte) { return byte == 0; })) {
        return log;
    }
    Reader reader(bytes);
    quint64 chain = Fingerprint(QByteArrayView(bytes).first(kHeadSize - 8));
    const bool ours = reader.Next(kMagic.size()) == kMagic;
    log.base.stamp.size = static_cast<qint64>(reader.Number(8));
    log.base.stamp.modified = static_cast<qint64>(reader.Number(8));
    log.base.firstPage = reader.Number(8);
    reader.Number(8);
    if (!ours || reader.Number(8) != chain) {
        ThrowDamaged(u"its log has no head"_s);
    }
    do {
        log.end = size - reader.Left();
        log.chain = chain;
    } while (TakeRecord(reader, chain, log));
    return log;
}

}  // namespace quorvane::access
