// The log beside an Access file: what committed statements have changed and the file does not hold yet
// (docs/access-files.md, "How changes reach the file").
//
// A log begins with the state of the file for which it was written. Each statement is one record: the bytes
// that it changed, by page. A record that is cut short or damaged ends the log; whatever follows is ignored.
// Before the file is changed the log gets a mark and is put on the disk.
#pragma once

#include <map>
#include <vector>

#include "data/store/access/disk/file.h"
#include "data/store/access/disk/pages.h"

namespace quorvane::access {

// 64 bits that tell bytes from other bytes; SEED chains several of them.
quint64 Fingerprint(QByteArrayView bytes, quint64 seed = 0);

// A disk writes whole sectors, so that a page in the file can be partly new after a power cut.
inline constexpr qsizetype kSectorSize = 512;
inline constexpr qsizetype kSectors = kPageSize / kSectorSize;
using SectorFingerprints = std::array<quint64, kSectors>;
SectorFingerprints FingerprintSectors(const Page& page);

// The state of the file to which a log belongs.
struct LogBase {
    FileStamp stamp;
    quint64 firstPage = 0;  // fingerprint of page 0
};

struct PageChange {
    PageNumber page = 0;
    PagePointer before;  // null: the page is beyond the end of the file
    PagePointer after;
    bool first = false;  // the first change of this page in the log
};

// What a log found beside the file says.
struct LoggedPage {
    bool inFile = false;      // the file had the page when the log was begun
    SectorFingerprints base;  // the page before all changes; only when inFile
    struct Patch {
        quint16 offset = 0;
        QByteArray bytes;
    };
    std::vector<Patch> patches;  // in the order in which they were made
    quint64 result = 0;          // fingerprint of the page after all changes
};
struct FoundLog {
    LogBase base;
    bool marked = false;  // the file may have been changed in part
    PageNumber pageCount = 0;
    int statements = 0;
    qint64 end = 0;  // of its last whole record
    quint64 chain = 0;
    std::map<PageNumber, LoggedPage> pages;
};

class RedoLog {
public:
    // Makes a new log; nothing is written before the first record.
    RedoLog(FileSystem& files, const QString& path, const LogBase& base);
    // Goes on with a log that was found.
    RedoLog(FileSystem& files, const QString& path, const FoundLog& found);

    // Both leave the log as it was when they fail.
    void AppendStatement(const std::vector<PageChange>& changes, PageNumber pageCount);
    // Says that the file is about to be changed, and puts the log on the disk.
    void MarkAndSync();
    // Deletes the log.
    void Remove();

private:
    void AppendRecord(quint8 kind, const QByteArray& body);
    void WriteAgain();

    FileSystem* m_files;
    QString m_path;
    std::unique_ptr<File> m_file;  // null: not open
    bool m_isMade = false;         // stands on the disk, perhaps without a record
    QByteArray m_head;             // goes in front of the first record
    qint64 m_end = 0;
    quint64 m_chain = 0;
    bool m_syncFailed = false;
};

// Reads a log up to its last whole record. Throws AccessError when it is no log.
FoundLog ReadLog(const File& file);

}  // namespace quorvane::access
