#include "editors/photo/picture_wholeness.h"

#include <cstdlib>

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

// Reads forward. Beyond the end of the contents it reads 0.
class Bytes {
public:
    explicit Bytes(const QByteArray& contents, qint64 position = 0)
        : m_contents(contents), m_position(position) {}

    bool Beyond() const { return m_position > m_contents.size(); }
    qint64 Position() const { return m_position; }
    void Skip(qint64 count) { m_position += count; }
    int Byte() {
        const qint64 at = m_position++;
        return at < m_contents.size() ? static_cast<unsigned char>(m_contents[static_cast<qsizetype>(at)])
                                      : 0;
    }
    int BigEndian16() {
        const int high = Byte();
        return high << 8 | Byte();
    }
    int LittleEndian16() {
        const int low = Byte();
        return low | Byte() << 8;
    }
    qint64 LittleEndian32() {
        const qint64 low = LittleEndian16();
        return static_cast<qint32>(low | qint64{LittleEndian16()} << 16);
    }

private:
    const QByteArray& m_contents;
    qint64 m_position;
};

bool IsWholeBitmap(const QByteArray& contents) {
    Bytes bytes(contents, 10);
    const qint64 pixels = bytes.LittleEndian32();
    constexpr qint64 oldHeader = 12;
    if (bytes.LittleEndian32() == oldHeader) {
        return true;
    }
    const qint64 width = bytes.LittleEndian32();
    const qint64 height = std::abs(bytes.LittleEndian32());
    bytes.Skip(2);
    const qint64 bitsPerPixel = bytes.LittleEndian16();
    const qint64 compression = bytes.LittleEndian32();
    const bool runLengths = compression == 1 || compression == 2;
    const qint64 bytesPerRow = (width * bitsPerPixel + 31) / 32 * 4;
    return runLengths || pixels + bytesPerRow * height <= contents.size();
}

// Segments with a length precede the first scan. The end mark cannot occur among compressed pixels.
bool IsWholeJpeg(const QByteArray& contents) {
    constexpr int scan = 0xDA;
    Bytes bytes(contents, 2);
    while (!bytes.Beyond()) {
        int mark = bytes.Byte();
        while (mark == 0xFF) {
            mark = bytes.Byte();
        }
        const int length = bytes.BigEndian16();
        bytes.Skip(length - 2);
        if (mark == scan) {
            return contents.indexOf("\xFF\xD9"_ba, static_cast<qsizetype>(bytes.Position())) >= 0;
        }
    }
    return false;
}

void SkipGifColours(Bytes& bytes, int flags) {
    if ((flags & 0x80) != 0) {
        bytes.Skip(qint64{3} << ((flags & 7) + 1));
    }
}

// Each block begins with its length. An empty one is the last.
void SkipGifBlocks(Bytes& bytes) {
    while (const int length = bytes.Byte()) {
        bytes.Skip(length);
    }
}

bool IsWholeGif(const QByteArray& contents) {
    constexpr int extension = 0x21;
    constexpr int image = 0x2C;
    Bytes bytes(contents, 10);
    const int flags = bytes.Byte();
    bytes.Skip(2);
    SkipGifColours(bytes, flags);
    int kind = bytes.Byte();
    for (; kind == extension; kind = bytes.Byte()) {
        bytes.Skip(1);
        SkipGifBlocks(bytes);
    }
    bytes.Skip(8);
    SkipGifColours(bytes, bytes.Byte());
    bytes.Skip(1);
    SkipGifBlocks(bytes);
    return kind == image && !bytes.Beyond();
}

}  // namespace

bool IsWholePicture(const QByteArray& contents, const QByteArray& format) {
    if (format == "bmp") {
        return IsWholeBitmap(contents);
    }
    if (format == "jpeg" || format == "jpg") {
        return IsWholeJpeg(contents);
    }
    return format != "gif" || IsWholeGif(contents);
}

}  // namespace quorvane
