#pragma once

#include <QByteArrayList>

namespace kadrona::printing::cups {

/// The addresses of announced printers that this user has chosen, or confirmed, at any time: kept
/// among the user's own values, where no other account writes.
class ChosenPrinters {
 public:
    bool Holds(const QByteArray& uri) const;

    /// `uri` as IsAnnouncedUri has it. What cannot be kept holds until the program ends.
    void Add(const QByteArray& uri);

 private:
    QByteArrayList ofThisRun_;
};

}  // namespace kadrona::printing::cups
