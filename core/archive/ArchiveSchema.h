#pragma once

#include <QLatin1StringView>

#include "store/Database.h"

namespace kadrona::core {

/// The full-text index on "ImgTags".
inline constexpr QLatin1StringView TagIndexName("ImgTags_idx");

/// Throws store::StoreError where a newer version of the program, or another program, made the
/// database.
void RequireKnownVersion(store::Database& database);

/// Makes what the archive's database lacks and changes nothing that exists. A full-text index that
/// an older database did not have yet is filled. A complete database is not written to, so that it
/// may be read-only. Throws store::StoreError.
void CreateArchive(store::Database& database);

}  // namespace kadrona::core
