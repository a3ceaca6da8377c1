#include <objbase.h>
#include <windows.h>

#include <QByteArray>

#include "app/platform_session.h"

namespace quorvane {
namespace {

bool AppsAreDark() {
    DWORD isLight = 1;
    DWORD size = sizeof(isLight);
    ::RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                   L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &isLight, &size);
    return isLight == 0;
}

void SetUnlessGiven(const char* variable, const char* value) {
    if (!qEnvironmentVariableIsSet(variable)) {
        qputenv(variable, value);
    }
}

// The system draws its own controls in light colours alone. On a dark desktop the toolkit draws them.
void FollowDarkDesktop() {
    if (AppsAreDark()) {
        SetUnlessGiven("QT_QPA_PLATFORM", "windows:darkmode=2");
        SetUnlessGiven("QT_STYLE_OVERRIDE", "Fusion");
    }
}

}  // namespace

std::shared_ptr<void> OpenPlatformSession() {
    // A drive without a medium is an error to the caller. The system would show a message and wait for the
    // user.
    ::SetErrorMode(::GetErrorMode() | SEM_FAILCRITICALERRORS);
    ::SetDllDirectoryW(L"");  // no library comes from the current folder
    ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    FollowDarkDesktop();
    return {nullptr, [](void*) { ::CoUninitialize(); }};
}

}  // namespace quorvane
