// A disk in memory that forgets what was not synced: files and their names as they are now, and as a power
// cut may leave them.
#pragma once

#include <QHash>
#include <QRandomGenerator>
#include <map>
#include <vector>

#include "data/store/access/disk/file.h"

namespace quorvane::access {

class SimulatedDisk : public FileSystem {
public:
    static constexpr int kSector = 512;  // bytes; written whole or not at all

    enum class Trouble {
        None,
        Kill,       // the process ends before the operation
        KillAfter,  // it ends when the operation is done
        Torn,       // it ends in the middle of a write
        Failure,    // the operation fails, and the process goes on
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
    void Restart(QRandomGenerator* powerCut);

    void Put(const QString& path, const QByteArray& bytes);
    QByteArray Bytes(const QString& path) const { return m_names.at(path)->now; }
    QStringList Names() const;

    std::unique_ptr<File> Open(const QString& path, Mode mode) override;
    bool Exists(const QString& path) override { return m_names.contains(path); }
    void Remove(const QString& path) override;
    void Truncate(const QString& path, qint64 size);
    void Rename(const QString& from, const QString& to) override;
    void SyncFolder(const QString& path) override;
    QString ComputerName() override { return QStringLiteral("WORKBENCH"); }

private:
    friend class SimulatedFile;
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
    using NamesByPath = std::map<QString, std::shared_ptr<Node>>;

    // Counts an operation and lets it go wrong. False: a write is to be done in part.
    bool Operate(bool isWrite = false);
    void Change(Node& node, const Written& written);
    void CutPower(Node& node, QRandomGenerator& random) const;

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
