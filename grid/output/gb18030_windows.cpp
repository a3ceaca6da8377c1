#include <windows.h>

#include <string>

#include "grid/output/gb18030.h"

namespace quorvane {
namespace {

std::optional<CString> Decoded(const QByteArray& bytes, UINT codePage) {
    const auto size = static_cast<int>(bytes.size());
    std::wstring text(bytes.size(), L'\0');  // no character is shorter than one byte
    const int length =
        ::MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes.constData(), size, text.data(), size);
    return length > 0 ? std::optional(CString::fromWCharArray(text.data(), length)) : std::nullopt;
}

}  // namespace

// The toolkit knows the system's own code page alone, which is a Chinese one on Chinese Windows only.
std::optional<CString> FromGb18030(const QByteArray& bytes) {
    constexpr UINT gb18030 = 54936;
    constexpr UINT gbk = 936;
    if (bytes.isEmpty()) {
        return CString();
    }
    std::optional<CString> text = Decoded(bytes, gb18030);
    return text || ::IsValidCodePage(gb18030) != 0 ? text : Decoded(bytes, gbk);
}

}  // namespace quorvane
