#pragma once

#include "platform/Error.h"

namespace kadrona::store {

/// The database could not be opened, read or written.
class StoreError : public platform::Error {
    using Error::Error;
};

/// The server with the database does not answer (any more). What was to be written may or may not
/// have been.
class ConnectionLost : public StoreError {
    using StoreError::StoreError;
};

}  // namespace kadrona::store
