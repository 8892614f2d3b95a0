#pragma once

#include "platform/Error.h"

namespace kadrona::store {

/// The database could not be opened, read or written.
class StoreError : public platform::Error {
    using Error::Error;
};

}  // namespace kadrona::store
