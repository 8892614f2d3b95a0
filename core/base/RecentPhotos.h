#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>

namespace kadrona::core {

/// A photo that was opened.
struct RecentPhoto {
    QString path;
    /// A small picture of it, a PNG file of at most RecentPhotos::MostPictureBytes; empty for none.
    QByteArray picture;

    bool operator==(const RecentPhoto&) const = default;
};

/// What the file of the photos opened last says.
struct RecentList {
    QList<RecentPhoto> photos;
    /// Whether photos are kept at all.
    bool keeps = true;

    bool operator==(const RecentList&) const = default;
};

/// Reads such a file, which anything may have written: what is no list is an empty one, and what no
/// photo can be is left out of it.
RecentList ParseRecentList(const QByteArray& json);
QByteArray RecentListBytes(const RecentList& list);

/// The photos that one user opened last, newest first, in a file of his own settings folder. He can
/// clear the list and have none kept: their names and faces are those of customers.
class RecentPhotos {
 public:
    static constexpr qsizetype MostPhotos = 10;
    static constexpr qsizetype MostPictureBytes = qsizetype{128} * 1024;

    /// Reads `path`; a missing or damaged file is an empty list. Throws FileError where the file is
    /// there and cannot be read.
    explicit RecentPhotos(QString path = DefaultPath());

    /// "Zuletzt.json" beside the user's values.
    static QString DefaultPath();

    const QList<RecentPhoto>& Photos() const { return list_.photos; }
    bool Keeps() const { return list_.keeps; }

    /// The following read the file again, which another window may have changed, and write it. They
    /// throw FileError where that fails.
    /// Puts a photo in front; does nothing where none are kept.
    void Add(RecentPhoto photo);
    void Clear();
    /// Where none are to be kept the list is cleared too.
    void SetKeeps(bool keeps);

 private:
    void Read();
    void Change(const std::function<void()>& change);
    void Save() const;

    QString path_;
    RecentList list_;
};

}  // namespace kadrona::core
