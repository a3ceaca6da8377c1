#include "data/store/ado/ado_connection.h"

namespace quorvane {

bool IsJetRegistered() {
    return false;
}

std::shared_ptr<Connection> CreateAdoConnection() {
    throw ProviderError(QStringLiteral("this system has no ADO"));
}

}  // namespace quorvane
