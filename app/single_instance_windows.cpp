#include <windows.h>

#include "app/single_instance.h"

namespace quorvane {

// A named mutex that is never waited on.
struct SingleInstanceGuard::Marker {
    HANDLE mutex = nullptr;
    DWORD error = ERROR_SUCCESS;  // the system's code right after the mutex was made
};

SingleInstanceGuard::SingleInstanceGuard(const QString& name) : m_marker(std::make_unique<Marker>()) {
    const std::wstring wideName = name.toStdWString();
    m_marker->mutex = ::CreateMutexW(nullptr, FALSE, wideName.c_str());
    m_marker->error = ::GetLastError();
}

SingleInstanceGuard::~SingleInstanceGuard() {
    if (m_marker->mutex != nullptr) {
        ::CloseHandle(m_marker->mutex);
    }
}

bool SingleInstanceGuard::IsAlreadyRunning() const {
    return m_marker->error == ERROR_ALREADY_EXISTS;
}

}  // namespace quorvane
