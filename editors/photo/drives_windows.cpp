#include <objbase.h>
#include <shellapi.h>
#include <windows.h>

#include <QDir>
#include <QRegularExpression>

#include "editors/photo/drives.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

const Qt::CaseSensitivity kPathCase = Qt::CaseInsensitive;

// The system's shell looks at the drive, and for that it wants COM in the calling thread.
DriveLook ReadDriveLook(const QString& rootFolder) {
    const bool hasCom = SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    DriveLook look;
    SHFILEINFOW info{};
    const std::wstring path = QDir::toNativeSeparators(rootFolder).toStdWString();
    if (::SHGetFileInfoW(path.c_str(), 0, &info, sizeof(info),
                         SHGFI_DISPLAYNAME | SHGFI_ICON | SHGFI_SMALLICON) != 0) {
        look.name = QString::fromWCharArray(info.szDisplayName);
        if (info.hIcon != nullptr) {
            look.icon = QImage::fromHICON(info.hIcon);
            ::DestroyIcon(info.hIcon);
        }
    }
    if (hasCom) {
        ::CoUninitialize();
    }
    return look;
}

QString NetworkShare(const QString& path) {
    static const QRegularExpression share(uR"(^\\\\[^\\?.][^\\]*\\[^\\]+)"_s);
    const QString root = share.match(QDir::toNativeSeparators(path)).captured();
    return root.isEmpty() ? root : root + u'\\';
}

std::vector<Volume> MountedVolumes(const char* /*table*/) {
    return {};
}

}  // namespace quorvane
