#include "tests/data/simulated_disk.h"

#include <QStringList>
#include <algorithm>
#include <utility>

namespace quorvane::access {

namespace {

[[noreturn]] void Fail() {
    throw AccessError(QStringLiteral("the disk fails"), Fault::Failed);
}

// No bytes at all end the content there.
void Overwrite(QByteArray& content, qint64 at, QByteArrayView bytes) {
    const auto offset = static_cast<qsizetype>(at);
    if (bytes.isEmpty()) {
        return content.resize(offset, '\0');
    }
    content.resize(std::max<qsizetype>(content.size(), offset + bytes.size()), '\0');
    std::copy(bytes.begin(), bytes.end(), content.begin() + offset);
}

// Two thirds, up to the end of a sector.
qsizetype PartialLength(qint64 offset, qsizetype length) {
    const qsizetype part = length / 3 * 2;
    return std::max<qsizetype>(0, part - static_cast<qsizetype>((offset + part) % SimulatedDisk::kSector));
}

}  // namespace

class SimulatedFile : public File {
public:
    SimulatedFile(SimulatedDisk& disk, std::shared_ptr<SimulatedDisk::Node> node)
        : m_disk(disk), m_node(std::move(node)) {}
    ~SimulatedFile() override {
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
    std::shared_ptr<SimulatedDisk::Node> m_node;
    bool m_locked = false;
};

bool SimulatedDisk::Operate(bool isWrite) {
    if (m_dead) {
        Fail();
    }
    if (++m_operation != m_fatal || m_trouble == Trouble::None) {
        return true;
    }
    m_dead = m_trouble != Trouble::Failure;
    if (m_later > 0) {
        m_fatal = m_operation + std::exchange(m_later, 0);
        m_trouble = Trouble::KillAfter;
        Fail();
    }
    if (m_trouble == Trouble::Kill || (m_trouble != Trouble::KillAfter && !isWrite)) {
        Fail();
    }
    return m_trouble == Trouble::KillAfter;
}

void SimulatedDisk::Change(Node& node, const Written& written) {
    Overwrite(node.now, written.offset, written.bytes);
    node.unsynced.push_back(written);
    node.modified = ++m_clock;
}

void SimulatedDisk::Restart(QRandomGenerator* powerCut) {
    m_dead = false;
    m_fatal = 0;
    ++m_run;
    if (powerCut == nullptr) {
        return;
    }
    m_names = m_unsyncedNames[powerCut->bounded(static_cast<quint32>(m_unsyncedNames.size()))];
    m_unsyncedNames = {m_names};
    for (auto& [path, node] : m_names) {
        CutPower(*node, *powerCut);
    }
}

// Each sector that was written may be there or not, whatever came before or after it.
void SimulatedDisk::CutPower(Node& node, QRandomGenerator& random) const {
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

void SimulatedDisk::Put(const QString& path, const QByteArray& bytes) {
    auto node = std::make_shared<Node>();
    node->now = bytes;
    node->synced = bytes;
    node->modified = ++m_clock;
    m_names[path] = node;
    m_unsyncedNames = {m_names};
}

QStringList SimulatedDisk::Names() const {
    QStringList names;
    for (const auto& [path, node] : m_names) {
        names += path;
    }
    return names;
}

std::unique_ptr<File> SimulatedDisk::Open(const QString& path, Mode mode) {
    if (mode == Mode::CreateNew) {
        Operate();
        if (m_names.contains(path)) {
            Fail();
        }
        m_names[path] = std::make_shared<Node>();
        m_unsyncedNames.push_back(m_names);
    }
    const auto found = m_names.find(path);
    if (found == m_names.end()) {
        Fail();
    }
    return std::make_unique<SimulatedFile>(*this, found->second);
}

void SimulatedDisk::Remove(const QString& path) {
    Operate();
    m_names.erase(path);
    m_unsyncedNames.push_back(m_names);
}

void SimulatedDisk::Truncate(const QString& path, qint64 size) {
    Operate();
    Change(*m_names.at(path), {size, {}});
}

void SimulatedDisk::Rename(const QString& from, const QString& to) {
    Operate();
    m_names[to] = m_names.at(from);
    m_names.erase(from);
    m_unsyncedNames.push_back(m_names);
}

void SimulatedDisk::SyncFolder(const QString& /*path*/) {
    Operate();
    m_unsyncedNames = {m_names};
}

}  // namespace quorvane::access
