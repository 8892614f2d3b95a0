#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

namespace kadrona::printing::cups {

/// A text of a driver's description, whose bytes may stand as hexadecimal digits: "3<2E>5 x 5 in"
/// is "3.5 x 5 in".
QString DescriptionText(const QByteArray& written);

/// The German texts in a driver's description. The library that reads the rest of it keeps only
/// those of the user's own language.
class GermanTexts {
 public:
    GermanTexts() = default;
    explicit GermanTexts(const QString& descriptionFile);

    /// Name of an option; empty where the driver has no German one.
    QString OfOption(const QByteArray& keyword) const;
    QString OfChoice(const QByteArray& keyword, const QByteArray& choice) const;

 private:
    /// By "keyword choice"; the name of an option stands as a choice of "Translation".
    QHash<QByteArray, QString> texts_;
};

}  // namespace kadrona::printing::cups
