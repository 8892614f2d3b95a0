#pragma once

#include <QString>

namespace kadrona::platform {

/// Which symbolic links a path may lead through.
enum class Links {
    /// All: the path is one that the user chose.
    All,
    /// Those of the user and of root: the path lies in the data folder, which accounts may share.
    /// Another one's link would let this user's rights write wherever it leads.
    Own,
};

/// Where a path leads.
struct FollowedPath {
    /// Without a link; the path as it was given where there is none in it. What does not exist is
    /// kept as it stands.
    QString path;
    /// Why it must not be used, or cannot be looked up: in German, without a full stop. Else empty.
    QString refusal;
};

FollowedPath FollowLinks(const QString& path, Links links);

}  // namespace kadrona::platform
