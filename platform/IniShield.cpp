#include "platform/IniShield.h"

#include <map>
#include <set>

namespace kadrona::platform {
namespace {

using namespace Qt::StringLiterals;

constexpr char Mark = '\x01';

bool IsBlank(QChar character) {
    return character == u' ' || character == u'\t';
}

bool IsComment(QStringView line) {
    return line.startsWith(u';') || line.startsWith(u'#');
}

/// Rewrites an INI text line by line.
class Shield {
 public:
    void Add(QStringView line);

    QString Finished();

 private:
    using Names = std::set<QString, CaseInsensitiveLess>;

    void AddSection(QStringView header, QStringView tail);
    void AddEmptyLine();
    void AddComment(QStringView comment);
    bool IsReadableKey(QStringView line);
    void Keep(QStringView line);
    void AnchorComment();
    void StartMarkedKey();

    // A comment at the very start would count as one for the whole file and be written apart.
    QString text_ = u"\n"_s;
    std::map<QString, Names, CaseInsensitiveLess> keysOfSections_;
    Names* keys_ = nullptr;  // of the section in progress; null before the first one
    int markedKeys_ = 0;
    bool commentIsLoose_ = false;  // no entry has followed the comment yet
};

void Shield::Add(QStringView line) {
    const QStringView trimmed = TrimmedIniText(line);
    const qsizetype sectionEnd = trimmed.startsWith(u'[') ? trimmed.indexOf(u']') : -1;
    const QStringView section =
        sectionEnd > 0 ? TrimmedIniText(trimmed.sliced(1, sectionEnd - 1)) : QStringView();
    if (trimmed.isEmpty()) {
        AddEmptyLine();
    } else if (IsComment(trimmed)) {
        AddComment(trimmed);
    } else if (!section.isEmpty()) {
        AddSection(section, TrimmedIniText(trimmed.sliced(sectionEnd + 1)));
    } else if (IsReadableKey(trimmed)) {
        text_ += trimmed;
        text_ += u'\n';
        commentIsLoose_ = false;
    } else {
        Keep(line);
    }
}

/// Other empty lines are left to SimpleIni, which sets sections apart by itself.
void Shield::AddEmptyLine() {
    if (commentIsLoose_) {
        Keep({});
    }
}

void Shield::AddSection(QStringView header, QStringView tail) {
    const auto [section, isNew] = keysOfSections_.try_emplace(header.toString());
    if (!isNew) {
        AnchorComment();
    }
    keys_ = &section->second;
    text_ += u"[%1]\n"_s.arg(section->first);
    commentIsLoose_ = false;
    if (IsComment(tail)) {
        AddComment(tail);
    } else if (!tail.isEmpty()) {
        AddComment(QString(u';' + tail.toString()));
    }
}

void Shield::AddComment(QStringView comment) {
    text_ += comment;
    text_ += u'\n';
    commentIsLoose_ = true;
}

/// Whether the line is the first value of a key of the section in progress.
bool Shield::IsReadableKey(QStringView line) {
    const QStringView name = TrimmedIniText(line.left(qMax(line.indexOf(u'='), qsizetype(0))));
    return keys_ != nullptr && !name.isEmpty() && !line.startsWith(u'[') &&
           !line.startsWith(IniShieldMark) && keys_->insert(name.toString()).second;
}

void Shield::Keep(QStringView line) {
    StartMarkedKey();
    // The second mark keeps the indentation, and tells the line from a mere anchor.
    text_ += IniShieldMark;
    text_ += line;
    text_ += u'\n';
    commentIsLoose_ = false;
}

/// A comment belongs to the entry that follows it; where none does, an empty one is made up.
void Shield::AnchorComment() {
    if (commentIsLoose_) {
        StartMarkedKey();
        text_ += u'\n';
        commentIsLoose_ = false;
    }
}

QString Shield::Finished() {
    AnchorComment();
    return std::move(text_);
}

void Shield::StartMarkedKey() {
    text_ += IniShieldMark;
    text_ += QString::number(markedKeys_++);
    text_ += u'=';
}

}  // namespace

QStringView TrimmedIniText(QStringView text) {
    while (!text.isEmpty() && IsBlank(text.front())) {
        text = text.sliced(1);
    }
    while (!text.isEmpty() && IsBlank(text.back())) {
        text.chop(1);
    }
    return text;
}

QString ShieldedIniText(const QString& text) {
    Shield shield;
    qsizetype start = 0;
    for (qsizetype end = 0; end <= text.size(); ++end) {
        if (end == text.size() || text[end] == u'\n' || text[end] == u'\r') {
            shield.Add(QStringView(text).sliced(start, end - start));
            start = end + 1;
            if (end + 1 < text.size() && text[end] == u'\r' && text[end + 1] == u'\n') {
                start = ++end + 1;
            }
        }
    }
    return shield.Finished();
}

QByteArray UnshieldedIniText(const std::string& written) {
    QByteArray text;
    text.reserve(qsizetype(written.size()));
    bool lastWasEmpty = true;
    for (QByteArrayView rest(written); !rest.isEmpty();) {
        const qsizetype newline = rest.indexOf('\n');
        QByteArrayView line = rest.first(newline < 0 ? rest.size() : newline + 1);
        rest = rest.sliced(line.size());
        if (line.startsWith(Mark)) {
            const qsizetype secondMark = line.indexOf(Mark, 1);
            if (secondMark < 0) {
                continue;
            }
            line = line.sliced(secondMark + 1);
        }
        const bool isEmpty = line.trimmed().isEmpty();
        if (!isEmpty || !lastWasEmpty) {
            text.append(line);
        }
        lastWasEmpty = isEmpty;
    }
    while (text.endsWith("\n\n")) {
        text.chop(1);
    }
    // At the start of the file it would read as a byte order mark and be dropped.
    if (text.startsWith("\xEF\xBB\xBF")) {
        text.prepend('\n');
    }
    return text;
}

}  // namespace kadrona::platform
