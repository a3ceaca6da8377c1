// The driver for Access files that asks the system's own engine: ADO with the Jet provider, where they are
// installed.
#pragma once

#include "data/connection.h"

namespace quorvane {

// Whether the Jet 4.0 provider is registered for programs of this kind. It is a 32-bit library, so never for
// 64-bit programs, and never on other systems than Windows.
bool IsJetRegistered();

// A connection, not yet open, through ADO. COM must be initialised in the thread that uses it, until it is
// destroyed.
std::shared_ptr<Connection> CreateAdoConnection();

}  // namespace quorvane
