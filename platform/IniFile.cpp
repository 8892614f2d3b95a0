#include "platform/IniFile.h"

#include <QFileInfo>

#include "platform/AtomicFile.h"
#include "platform/Error.h"
#include "platform/FolderLock.h"
#include "platform/IniContent.h"
#include "platform/SilenceWatch.h"

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

/// Tens of thousands of places of templates; a start reads a file of short lines within two
/// seconds.
constexpr qint64 MaximumBytes = qint64{4} << 20;

QByteArray ContentOf(const QString& path, Links links) {
    const SilenceWatch watch(AwaitedFile(path));
    return ReadFileIfThere(path, MaximumBytes, links).value_or(QByteArray());
}

}  // namespace

IniFile::IniFile(QString path, Links links)
    : path_(std::move(path)),
      links_(links),
      content_(std::make_unique<IniContent>(ContentOf(path_, links_))) {}

IniFile::~IniFile() = default;

void IniFile::Change(const QString& path, const std::function<void(IniFile&)>& change,
                     Links links) {
    const SilenceWatch watch(AwaitedFile(path));
    const FolderLock lock(QFileInfo(path).path());
    IniFile file(path, links);
    change(file);
    file.Save();
}

QStringList IniFile::Sections() const {
    return content_->Sections();
}

QString IniFile::ReadString(const QString& section, const QString& key,
                            const QString& fallback) const {
    return content_->Value(section, key).value_or(fallback);
}

int IniFile::ReadInteger(const QString& section, const QString& key, int fallback) const {
    bool isInteger = false;
    const int value = ReadString(section, key).toInt(&isInteger);
    return isInteger ? value : fallback;
}

void IniFile::WriteString(const QString& section, const QString& key, const QString& value) {
    changed_ |= content_->SetValue(section, key, value);
}

void IniFile::WriteInteger(const QString& section, const QString& key, int value) {
    WriteString(section, key, QString::number(value));
}

void IniFile::EraseSection(const QString& section) {
    changed_ |= content_->EraseSection(section);
}

bool IniFile::EraseKey(const QString& section, const QString& key) {
    const bool erased = content_->EraseKey(section, key);
    changed_ |= erased;
    return erased;
}

void IniFile::Save() {
    if (!changed_) {
        return;
    }
    const QByteArray bytes = content_->ToBytes();
    if (bytes.size() > MaximumBytes) {
        throw FileError(
            u"Die Datei „%1“ konnte nicht geschrieben werden: Sie würde zu groß."_s.arg(path_));
    }
    WriteFileAtomically(path_, bytes, links_);
    changed_ = false;
}

}  // namespace kadrona::platform
