#pragma once

#include <QString>

namespace kadrona::core {

/// The store that reads and writes the active photo profile's settings file, as far as the data
/// module needs it: it binds the store to another file and touches no value.
class ProfileStore {
 public:
    virtual ~ProfileStore() = default;
    virtual QString StorageFile() const = 0;
    virtual void SetStorageFile(const QString& path) = 0;
};

}  // namespace kadrona::core
