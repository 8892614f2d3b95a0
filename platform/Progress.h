#pragma once

#include <QString>
#include <functional>

#include "platform/Error.h"

namespace kadrona::platform {

/// The user gave a long operation up.
class Cancelled : public Error {
 public:
    Cancelled() : Error(QStringLiteral("Der Vorgang wurde abgebrochen.")) {}
};

/// Who is told how far a long operation has come: what is done now, in German, and how many of how
/// many steps of that are over. It may throw Cancelled, which leaves everything as sound as the
/// operation says. Called often; whoever shows something does so only every now and then.
using Progress = std::function<void(const QString& what, qint64 done, qint64 total)>;

/// For those whom nobody watches.
inline void NoProgress(const QString& /*what*/, qint64 /*done*/, qint64 /*total*/) {}

}  // namespace kadrona::platform
