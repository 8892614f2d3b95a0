#pragma once

#include <QByteArray>
#include <QString>
#include <exception>

namespace kadrona::platform {

/// Base of every error that the program raises itself. Carries a German text that the application's
/// standard error display shows to the user as it stands.
class Error : public std::exception {
 public:
    explicit Error(QString text) : text_(std::move(text)), utf8_(text_.toUtf8()) {}

    const QString& Text() const noexcept { return text_; }
    const char* what() const noexcept override { return utf8_.constData(); }

 private:
    QString text_;
    QByteArray utf8_;
};

/// A file could not be read, written or created.
class FileError : public Error {
    using Error::Error;
};

/// A file stands under its name, whole, but may be gone after a power cut. What depends on it must
/// not be undone.
class UnflushedError : public FileError {
    using FileError::FileError;
};

}  // namespace kadrona::platform
