#pragma once

#include <QByteArray>
#include <utility>
#include <vector>

#include "printing/PrintImage.h"

namespace kadrona::printing::cups {

/// What a printer is set to, as its device mode block keeps it: UTF-8, a line `key=value` per
/// option in the order in which they were set. A backslash stands before what would end a key or a
/// line: `\\`, `\=` (in a key), `\n`, `\r`, `\0`.
///
///     PageSize=A6
///     InputSlot=Photo
///     copies=2
///
/// The keys are those of the queue's driver and of the print service, and those below.
class DeviceMode {
 public:
    /// Number of copies of the page.
    static constexpr const char* Copies = "copies";
    /// "3" as the driver has the paper, "4" turned by a quarter (RFC 8011, 5.2.10: portrait and
    /// landscape), "auto" as more of the photos fits. The page is turned before it is sent.
    static constexpr const char* Orientation = "orientation-requested";
    /// The queue's whole name where a printer settings file keeps only its beginning.
    static constexpr const char* QueueName = "printer-name";
    /// Where a printer is that the network announces and that has no queue of its own.
    static constexpr const char* AnnouncedUri = "announced-uri";

    DeviceMode() = default;
    /// Reads a block. A line that is not `key=value` is left out, of several with the same key the
    /// last one counts.
    explicit DeviceMode(const QByteArray& block);
    QByteArray ToBlock() const;

    /// Empty where the option is not set.
    QByteArray Value(const QByteArray& key) const;
    void Set(const QByteArray& key, const QByteArray& value);
    void Remove(const QByteArray& key);
    const std::vector<std::pair<QByteArray, QByteArray>>& Options() const { return options_; }

    /// 1 ... MostCopies, whatever is stored.
    int CopyCount() const;

    /// Upright where it is not set.
    printing::Orientation SheetOrientation() const;
    void SetSheetOrientation(printing::Orientation orientation);

    bool operator==(const DeviceMode&) const = default;

 private:
    std::vector<std::pair<QByteArray, QByteArray>> options_;
};

}  // namespace kadrona::printing::cups
