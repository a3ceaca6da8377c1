#include "data/store/ado/ado_connection.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

bool IsJetRegistered() {
    return false;
}

std::shared_ptr<Connection> CreateAdoConnection() {
    throw ProviderError(u"this system has no ADO"_s);
}

}  // namespace quorvane
