// A disk in memory that forgets what was not synced: files and their names as they are now, and as a power
// cut may leave them.
#pragma once

#include <QMap>
#include <QRandomGenerator>
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "data/store/access/disk/file.h"

namespace quorvane::access {

class SimulatedDisk : public FileSystem {
public:
    static constexpr int kSector = 512;  // bytes; written whole or not at all

    enum class Trouble {
        None,
        Kill,     // the process ends when the operation is done
        Torn,     // it ends in the middle of a write, or before another operation
        Failure,  // the operation fails, and the process goes on
    };

    // Lets operation number OPERATION, counted from 1, go wrong. With LATER the process ends so many
    // operations after it has failed.
    void Plan(int operation, Trouble trouble, int later = 0) {
        m_operation = 0;
        m_fatal = operation;
        m_trouble = trouble;
        m_later = later;
    }
    int Operations() const { return m_operation; }
    bool IsDead() const { return m_dead; }

    // The process starts again; POWERCUT loses part of what was not synced, as the numbers fall.
    void Restart(QRandomGenerator* powerCut) {
        m_dead = false;
        m_fatal = 0;
        ++m_run;
        if (powerCut == nullptr) {
            return;
        }
        m_names = m_unsyncedNames[powerCut->bounded(static_cast<quint32>(m_unsyncedNames.size()))];
        m_unsyncedNames = {m_names};
        for (const auto& node : m_names) {
            CutPower(*node, *powerCut);
        }
    }

    void Put(const QString& path, const QByteArray& bytes) {
        m_names[path] = std::make_shared<Node>(Node{bytes, bytes, {}, ++m_clock});
        m_unsyncedNames = {m_names};
    }
    QByteArray Bytes(const QString& path) const { return m_names[path]->now; }
    QStringList Names() const { return m_names.keys(); }

    std::unique_ptr<File> Open(const QString& path, Mode mode) override {
        if (mode == Mode::CreateNew) {
            Operate();
            if (m_names.contains(path)) {
                Fail();
            }
            m_names[path] = std::make_shared<Node>();
            m_unsyncedNames.push_back(m_names);
        }
        if (!m_names.contains(path)) {
            Fail();
        }
        return std::make_unique<OpenFile>(*this, m_names[path]);
    }
    bool Exists(const QString& path) override { return m_names.contains(path); }
    void Remove(const QString& path) override {
        Operate();
        m_names.remove(path);
        m_unsyncedNames.push_back(m_names);
    }
    void Truncate(const QString& path, qint64 size) {
        Operate();
        Change(*m_names[path], {size, {}});
    }
    void Rename(const QString& from, const QString& to) override {
        Operate();
        m_names[to] = m_names.take(from);
        m_unsyncedNames.push_back(m_names);
    }
    void SyncFolder(const QString& /*path*/) override {
        Operate();
        m_unsyncedNames = {m_names};
    }
    QString ComputerName() override { return QStringLiteral("WORKBENCH"); }

private:
    struct Written {
        qint64 offset = 0;  // without bytes: the new size of the file
        QByteArray bytes;
    };
    struct Node {
        QByteArray now;
        QByteArray synced;
        std::vector<Written> unsynced;
        qint64 modified = 0;
        int holder = 0;  // the run of the process that has it locked
    };
    using NamesByPath = QMap<QString, std::shared_ptr<Node>>;

    class OpenFile : public File {
    public:
        OpenFile(SimulatedDisk& disk, std::shared_ptr<Node> node) : m_disk(disk), m_node(std::move(node)) {}
        ~OpenFile() override {
            if (m_locked) {
                m_node->holder = 0;
            }
        }

        FileStamp Stamp() const override { return {m_node->now.size(), m_node->modified, 1}; }
        void Read(qint64 offset, ByteSpan into) const override {
            const QByteArrayView bytes = Part(QByteArrayView(m_node->now), static_cast<qsizetype>(offset),
                                              static_cast<qsizetype>(into.size()));
            std::copy(bytes.begin(), bytes.end(), into.begin());
        }
        void Write(qint64 offset, QByteArrayView bytes) override {
            const bool whole = m_disk.Operate(true);
            const QByteArrayView done = whole ? bytes : bytes.first(PartialLength(offset, bytes.size()));
            if (!done.isEmpty()) {
                m_disk.Change(*m_node, {offset, done.toByteArray()});
            }
            if (!whole) {
                Fail();
            }
        }
        // A sync that fails takes what it could not write for written.
        void Sync() override {
            const auto unsynced = std::exchange(m_node->unsynced, {});
            m_disk.Operate();
            for (const auto& written : unsynced) {
                Overwrite(m_node->synced, written.offset, written.bytes);
            }
        }
        bool Lock() override {
            m_locked = m_node->holder == 0 || m_node->holder != m_disk.m_run;
            m_node->holder = m_disk.m_run;
            return m_locked;
        }

    private:
        SimulatedDisk& m_disk;
        std::shared_ptr<Node> m_node;
        bool m_locked = false;
    };

    [[noreturn]] static void Fail() { throw AccessError(QStringLiteral("the disk fails"), Fault::Failed); }

    // No bytes at all end the content there.
    static void Overwrite(QByteArray& content, qint64 at, QByteArrayView bytes) {
        const auto offset = static_cast<qsizetype>(at);
        if (bytes.isEmpty()) {
            return content.resize(offset, '\0');
        }
        content.resize(std::max<qsizetype>(content.size(), offset + bytes.size()), '\0');
        std::copy(bytes.begin(), bytes.end(), content.begin() + offset);
    }

    // Two thirds, up to the end of a sector.
    static qsizetype PartialLength(qint64 offset, qsizetype length) {
        const qsizetype part = length / 3 * 2;
        return std::max<qsizetype>(0, part - static_cast<qsizetype>((offset + part) % kSector));
    }

    // Counts an operation and lets it go wrong. False: a write is to be done in part.
    bool Operate(bool isWrite = false) {
        if (m_dead) {
            Fail();
        }
        if (++m_operation != m_fatal || m_trouble == Trouble::None) {
            return true;
        }
        m_dead = m_trouble != Trouble::Failure;
        if (m_later > 0) {
            m_fatal = m_operation + std::exchange(m_later, 0);
            m_trouble = Trouble::Kill;
            Fail();
        }
        if (m_trouble != Trouble::Kill && !isWrite) {
            Fail();
        }
        return m_trouble == Trouble::Kill;
    }

    void Change(Node& node, const Written& written) {
        Overwrite(node.now, written.offset, written.bytes);
        node.unsynced.push_back(written);
        node.modified = ++m_clock;
    }

    // Each sector that was written may be there or not, whatever came before or after it.
    static void CutPower(Node& node, QRandomGenerator& random) {
        QByteArray left = node.synced;
        const quint32 lost = random.bounded(4U);  // sectors in three
        for (const Written& written : node.unsynced) {
            qsizetype at = 0;
            do {
                const auto end = static_cast<qsizetype>(
                    std::min((written.offset + at) / kSector * kSector + kSector - written.offset,
                             qint64{written.bytes.size()}));
                if (random.bounded(3U) >= lost) {
                    Overwrite(left, written.offset + at, QByteArrayView(written.bytes).sliced(at, end - at));
                }
                at = end;
            } while (at < written.bytes.size());
        }
        node.modified = left == node.synced ? node.modified : node.modified + 1;
        node.now = left;
        node.synced = left;
        node.unsynced.clear();
    }

    NamesByPath m_names;
    std::vector<NamesByPath> m_unsyncedNames{{}};  // the synced ones, and those after each later change
    int m_operation = 0;
    int m_fatal = 0;
    int m_later = 0;
    Trouble m_trouble = Trouble::None;
    bool m_dead = false;
    int m_run = 1;
    qint64 m_clock = 1;
};

}  // namespace quorvane::access
