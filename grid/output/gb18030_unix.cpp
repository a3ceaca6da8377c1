#include <QStringDecoder>

#include "grid/output/gb18030.h"

namespace quorvane {

std::optional<CString> FromGb18030(const QByteArray& bytes) {
    QStringDecoder decoder("GB18030", QStringDecoder::Flag::Stateless);
    CString text = decoder.isValid() ? decoder.decode(bytes) : CString();
    return decoder.isValid() && !decoder.hasError() ? std::optional(std::move(text)) : std::nullopt;
}

}  // namespace quorvane
