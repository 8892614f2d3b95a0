#pragma once

#include <QDirIterator>
#include <cstdlib>
#include <vector>

#include "core/archive/ArchiveCheck.h"
#include "core/archive/ArchiveDeletion.h"
#include "platform/AtomicFile.h"
#include "tests/core/ArchiveFixture.h"

namespace kadrona::testing {

using Ids = std::vector<qint64>;

/// What is kept, deleted and brought back.
class ArchiveKeeping : public Archive {
 protected:
    store::Database& Database() { return data.ArchiveDatabase(); }
    core::Deletion Delete(const Ids& ids) {
        return core::DeleteRecords(Database(), archiveFolder, ids, now, platform::NoProgress);
    }
    core::ArchiveReport Check() {
        return core::CheckArchive(Database(), archiveFolder, platform::NoProgress);
    }
    /// Faults with the numbers of their records and the names of their files.
    QStringList Faults() {
        QStringList faults;
        for (const core::ArchiveFinding& finding : Check().findings) {
            faults.append(u"%1 %2 %3"_s.arg(int(finding.fault))
                              .arg(finding.id)
                              .arg(QFileInfo(finding.path).fileName()));
        }
        return faults;
    }

    /// Every byte of the database's folder, or of a dump of the server's, and of the archive's.
    QByteArray AllBytes() const {
        QByteArray bytes;
        if (OnServer()) {
            const QString dump = databaseFolder + u"/dump"_s;
            const QString line = u"PGPASSWORD=%1 pg_dump -h %2 -U %3 %4 > %5"_s.arg(
                server.password, server.host, server.user, server.database, dump);
            // NOLINTNEXTLINE(cert-env33-c): a line of our own
            EXPECT_EQ(std::system(qPrintable(line)), 0);
        }
        for (const QString& folder : {databaseFolder, archiveFolder}) {
            for (QDirIterator files(folder, QDir::Files | QDir::Hidden,
                                    QDirIterator::Subdirectories);
                 files.hasNext();) {
                bytes += platform::ReadWholeFile(files.next(), 1 << 30);
            }
        }
        return bytes;
    }
};

}  // namespace kadrona::testing
