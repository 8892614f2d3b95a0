// Lets every operation that writes meet failing system calls, one run a fault, and looks at what is
// left each time: every file as it was or as it should become, nothing beside them, a sound
// database, indexes that agree with the files, a message with path and reason, no hang.
//
//   walk_faults [--all] [OPERATION...]     a short set of faults without --all
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <cerrno>
#include <csignal>
#include <cstdio>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "tests/faults/FailingCalls.h"
#include "tests/faults/Operations.h"

using namespace Qt::StringLiterals;
using namespace kadrona;
using namespace kadrona::testing;

namespace {

constexpr unsigned PatienceSeconds = 60;

/// Texts that say no path.
const QStringList Prescribed{u"Can not save this profile settings!"_s,
                             u"Fehler, das Datenbankverzeichnis konnte nicht erstellt werden."_s,
                             u"Fehler, das Kurvenverzeichnis konnte nicht erstellt werden."_s,
                             u"Es wurde nichts geschrieben."_s};

/// A photo is told by its name.
const QRegularExpression PhotoName(u"„[^/“]+\\.(png|jpg)“"_s);

/// Names (those that are drawn by chance made equal) with their content.
using Files = QMap<QString, QByteArray>;

const QRegularExpression DrawnName(
    u"(pro|prn|kdr|bild|-)[0-9A-Fa-f]{1,9}\\.(tmp|png|additions|ini|jpg|thumbnail)"_s);
/// When a PDF was made, and what tells it from others.
const QRegularExpression DrawnMark(u"CreationDate[^)]*|/ID[^]]*|uuid:[-0-9a-f]*"_s);

/// A database is judged by what it says, not by its bytes; its journal is the next opening's. A
/// drawn name tells files apart no longer, so their content does.
Files FilesBelow(const QString& folder) {
    Files files;
    QDirIterator found(folder, QDir::Files | QDir::Hidden | QDir::System,
                       QDirIterator::Subdirectories);
    while (found.hasNext()) {
        QFile file(found.next());
        if (found.fileName().startsWith(u"KDRImageBase") || !file.open(QIODevice::ReadOnly)) {
            continue;
        }
        const QString content =
            QString::fromLatin1(file.readAll()).replace(DrawnName, u"\\1*.\\2"_s).remove(DrawnMark);
        const QString name = found.filePath().replace(DrawnName, u"\\1*.\\2"_s);
        if (found.fileName().startsWith(u"Daten.")) {  // lists what could be exported
            files.insert(name, {});
            continue;
        }
        files.insert(name == found.filePath() ? name : name + u'#' + content, content.toLatin1());
    }
    return files;
}

/// Every profile's file is there, and every such file is a profile's.
QString IndexFault(const QString& folder) {
    const QDir data(folder + u"/common/Kadrona"_s);
    QStringList named;
    for (const QString& index : data.entryList({u"*.ini"_s})) {
        const QByteArray content = platform::ReadWholeFile(data.filePath(index), 1 << 20);
        for (auto names = DrawnName.globalMatch(QString::fromUtf8(content)); names.hasNext();) {
            named.append(names.next().captured());
        }
    }
    named.sort();
    const QStringList present =
        data.entryList({u"pro*.tmp"_s, u"prn*.tmp"_s}, QDir::Files, QDir::Name);
    return named == present
               ? QString()
               : u"profiles name %1, there are %2"_s.arg(named.join(u' '), present.join(u' '));
}

bool Copy(const QString& from, const QString& to) {
    QDir(to).removeRecursively();
    return QProcess::execute(u"cp"_s, {u"-a"_s, from, to}) == 0;
}

/// One operation with what it starts from and what it comes to.
class Walk {
 public:
    Walk(const Operation& operation, const QString& folder)
        : operation_(operation), origin_(folder + u"/origin"_s), scene_(folder + u"/scene"_s) {
        // The user's values lie in the scene too, so that they fail with the rest.
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(scene_ + u"/config"_s));
        qputenv("XDG_DATA_HOME", QFile::encodeName(scene_ + u"/user"_s));
        QDir().mkpath(scene_);
        operation.prepare(scene_);
        Copy(scene_, origin_);
        before_ = FilesBelow(scene_);
        const QString fault = Run(Fault());
        Require(messages_.isEmpty() && fault.isEmpty(), Fault(),
                u"it fails by itself: "_s + messages_.join(u' ') + fault);
        after_ = FilesBelow(scene_);
    }

    int CallCount() const { return callCount_; }
    int FaultCount() const { return faultCount_; }

    void Meet(const Fault& fault) {
        Copy(origin_, scene_);
        const QString thrown = Run(fault);
        Require(thrown.isEmpty(), fault, thrown);
        const Files left = FilesBelow(scene_);
        for (auto file = left.begin(); file != left.end(); ++file) {
            const bool isOld = before_.contains(file.key()) && before_[file.key()] == *file;
            const bool isNew = after_.contains(file.key()) && after_[file.key()] == *file;
            Require(isOld || isNew, fault, file.key() + u" is neither the old nor the new file"_s);
        }
        for (const QString& name : before_.keys()) {
            Require(left.contains(name) || !after_.contains(name), fault, name + u" is gone"_s);
        }
        Require(!messages_.isEmpty() || left == after_, fault, u"nothing is said"_s);
        for (const QString& message : messages_) {
            const bool names = message.contains(scene_) || message.contains(PhotoName);
            const bool tells = names && u".!"_s.contains(message.back());
            Require(tells || Prescribed.contains(message), fault,
                    u"path or reason lacks in: "_s + message);
        }
        Require(IndexFault(scene_).isEmpty(), fault, IndexFault(scene_));
        Require(ArchiveFault(scene_).isEmpty(), fault, ArchiveFault(scene_));
    }

 private:
    /// Returns what was thrown that no handler of the program knows.
    QString Run(const Fault& fault) {
        messages_.clear();
        QString unknown;
        alarm(PatienceSeconds);
        try {
            const std::function<void()> run = operation_.begin(scene_, messages_);
            messages_.clear();
            Fault met = fault;
            met.removals = operation_.removes;
            StartFailing(QFile::encodeName(scene_), met);
            run();
        } catch (const platform::Error& error) {
            messages_.append(error.Text());
        } catch (const std::exception& error) {
            unknown = u"thrown: "_s + QString::fromUtf8(error.what());
        }
        callCount_ = static_cast<int>(StopFailing().size());
        alarm(0);
        return unknown;
    }

    void Require(bool condition, const Fault& fault, const QString& what) {
        if (!condition) {
            ++faultCount_;
            std::printf("%s, call %d %s %s: %s\n", qPrintable(operation_.name), fault.nth,
                        fault.error != 0 ? strerrorname_np(fault.error) : "cut short",
                        fault.fromThenOn ? "and all after it" : "once", qPrintable(what));
            std::fflush(stdout);
        }
    }

    const Operation& operation_;
    QString origin_;
    QString scene_;
    Files before_;
    Files after_;
    QStringList messages_;
    int callCount_ = 0;
    int faultCount_ = 0;
};

struct Kind {
    int error;
    bool fromThenOn;
    bool isShort;  // part of the short set
};

/// Of an operation of more calls the short set lets only every second, third, ... one fail in each
/// way, in turn.
constexpr int ManyCalls = 60;

constexpr Kind Kinds[] = {{EIO, false, true},    {ENOSPC, true, true},   {0, true, false},
                          {EIO, true, false},    {ENOSPC, false, false}, {EDQUOT, false, false},
                          {EDQUOT, true, false}, {EACCES, false, false}, {EACCES, true, false},
                          {0, false, false}};

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QStringList wanted = QCoreApplication::arguments().sliced(1);
    const bool all = wanted.removeAll(u"--all"_s) > 0;
    int faults = 0;
    int runs = 0;
    for (const Operation& operation : AllOperations()) {
        if (!wanted.isEmpty() && !wanted.contains(operation.name)) {
            continue;
        }
        // Only names and orders count, so the files may lie in memory.
        const QTemporaryDir folder(QDir(u"/dev/shm"_s).exists() ? u"/dev/shm/faults-XXXXXX"_s
                                                                : QString());
        Walk walk(operation, folder.path());
        const int calls = walk.CallCount();
        walk.Meet({1000000, EIO, false});
        const int step = all ? 1 : calls / ManyCalls + 1;
        int first = 1;
        for (const Kind& kind : Kinds) {
            for (int nth = first; nth <= calls && (all || kind.isShort); nth += step, ++runs) {
                walk.Meet({nth, kind.error, kind.fromThenOn});
            }
            first = first % step + 1;
        }
        faults += walk.FaultCount();
        std::printf("%s: %d calls, %d faults\n", qPrintable(operation.name), calls,
                    walk.FaultCount());
        std::fflush(stdout);
    }
    std::printf("%d runs, %d faults\n", runs, faults);
    return faults > 0 || runs == 0 ? 1 : 0;
}
