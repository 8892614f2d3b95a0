#include "app/commandline/PhotoBatch.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <filesystem>

#include "app/commandline/CommandSetup.h"
#include "app/commandline/TerminalText.h"
#include "core/base/FileNaming.h"
#include "core/sheet/PhotoLoading.h"
#include "platform/Error.h"
#include "platform/Paths.h"
#include "platform/TerminationSignals.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

bool NamesFolder(const QString& output) {
    return output.endsWith(QDir::separator()) || QFileInfo(output).isDir() ||
           QFileInfo(output).suffix().isEmpty();
}

/// Photos whose names are no UTF-8: the toolkit leaves them out of its lists without a word. Under
/// what stands here instead none can be opened, so that each is named among those not done.
QStringList BrokenNames(const QString& folder, const QStringList& patterns) {
    QStringList broken;
    std::error_code failed;
    for (const auto& entry :
         std::filesystem::directory_iterator(QFile::encodeName(folder).toStdString(), failed)) {
        const QByteArray bytes = QByteArray::fromStdString(entry.path().filename().string());
        const QString name = QFile::decodeName(bytes);
        if (QFile::encodeName(name) != bytes && QDir::match(patterns, name)) {
            broken.append(QDir(folder).filePath(name));
        }
    }
    return broken;
}

}  // namespace

QStringList RequestedPhotos(const QStringList& photos) {
    // Not the filter's first entry alone: "Alle" does not have the formats that came later.
    const QStringList patterns = core::OpenDialog::OfPhotos().Patterns();
    QStringList found;
    for (const QString& photo : photos) {
        if (!QFileInfo(photo).isDir()) {
            found.append(photo);
            continue;
        }
        for (const QFileInfo& file : QDir(photo).entryInfoList(patterns, QDir::Files, QDir::Name)) {
            found.append(file.filePath());
        }
        found.append(BrokenNames(photo, patterns));
    }
    if (found.isEmpty()) {
        throw UsageError(u"In „%1“ ist kein Foto."_s.arg(photos.join(u"“, „"_s)));
    }
    return found;
}

QStringList OutputFiles(const QString& output, const QStringList& photos,
                        const QStringList& extensions) {
    if (!NamesFolder(output)) {
        if (photos.size() > 1) {
            throw UsageError(u"Mehrere Fotos brauchen einen Ordner als Ziel (--out ORDNER)."_s);
        }
        const QString extension = QFileInfo(output).suffix();
        if (!extensions.contains(extension, Qt::CaseInsensitive)) {
            throw UsageError(u"Das Format „.%1“ kann nicht geschrieben werden."_s.arg(extension));
        }
        return {output};
    }
    try {
        platform::RequireFolder(output);
    } catch (const platform::FileError& error) {
        throw UsageError(error.Text());
    }
    QSet<QString> taken;
    QStringList outputs;
    for (const QString& photo : photos) {
        QString name = core::GetNameWithSuffix(photo, u"_kdr"_s);
        for (int number = 2; taken.contains(name); ++number) {
            name = core::GetNameWithSuffix(photo, u"_%1_kdr"_s.arg(number));
        }
        taken.insert(name);
        outputs.append(QDir(output).filePath(name + u".jpg"_s));
    }
    return outputs;
}

FileIdentities IdentitiesOf(const QStringList& files) {
    FileIdentities identities;
    for (const QString& file : files) {
        struct stat status {};
        if (stat(QFile::encodeName(file).constData(), &status) == 0) {
            identities.emplace(status.st_dev, status.st_ino);
        }
    }
    return identities;
}

void RequireNoPhoto(const QString& output, const FileIdentities& photos) {
    const FileIdentities there = IdentitiesOf({output});
    if (!there.empty() && photos.contains(*there.begin())) {
        throw platform::Error(
            u"Das Ziel „%1“ ist eines der Fotos und würde es überschreiben."_s.arg(output));
    }
}

void OpenWithTemplate(core::TData& data, const core::Settings& settings, const QString& photo,
                      imaging::LayeredImage& image) {
    core::OpenPhoto(photo, settings, image);
    data.SetCurrentFile(photo);
    core::BalancePhoto(settings, image);
    core::TurnOpenedPhoto(settings, image);
    data.DrawMask(image);
}

void Remark(const QString& photo, const QString& remark, QTextStream& errors) {
    if (!remark.isEmpty()) {
        errors << HarmlessName(photo) << u": "_s << remark << Qt::endl;
    }
}

void OpenUnderTemplate(core::TData& data, const core::Settings& settings,
                       const std::optional<core::TemplatePlace>& place, bool automatic,
                       const QString& photo, imaging::LayeredImage& image, QTextStream& errors) {
    OpenWithTemplate(data, settings, photo, image);
    if (automatic) {
        Remark(photo, PlaceTemplateOnFace(data, image), errors);
    } else {
        PlaceTemplateAt(data, image, place);
    }
    if (core::AverageBrightness(image.Photo()) > core::BrightestAccepted) {
        Remark(photo, core::TooBrightWarning, errors);
    }
}

int MakeEach(const QStringList& photos, const QStringList& outputs, QTextStream& progress,
             QTextStream& errors,
             const std::function<QString(const QString& photo, const QString& output)>& make) {
    const FileIdentities sources = IdentitiesOf(photos);
    int result = Done;
    for (qsizetype i = 0; i < photos.size(); ++i) {
        const QString& photo = photos.at(i);
        const QString& output = outputs.at(i);
        platform::ThrowIfEnding();
        try {
            RequireNoPhoto(output, sources);
            progress << u"[%1/%2] %3 → %4 (%5)"_s.arg(i + 1)
                            .arg(photos.size())
                            .arg(HarmlessName(photo), HarmlessName(output), make(photo, output))
                     << Qt::endl;
        } catch (const std::exception&) {
            errors << FailureLine(photo) << Qt::endl;
            result = SomePhotoFailed;
        }
    }
    return result;
}

}  // namespace kadrona::app
