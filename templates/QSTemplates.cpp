#include "QSTemplates.h"

#include "QSError.h"
#include "QSInfo.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr qint64 maxFileSize = qint64(1024) * 1024;

QSTemplate read(const QDir &folder, const QString &name)
{
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::ReadOnly)) {
        throw QSError::io(u"%1: can't be read: %2"_s.arg(name, file.errorString()));
    }
    const QByteArray bytes = file.read(maxFileSize + 1);
    if (file.error() != QFileDevice::NoError) {
        throw QSError::io(u"%1: can't be read: %2"_s.arg(name, file.errorString()));
    }
    if (bytes.size() > maxFileSize) {
        throw QSError::invalid(u"%1: is larger than 1 MiB"_s.arg(name));
    }
    // Stateless: a character cut off at the end of the file counts as an error too.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes);
    if (utf8.hasError()) {
        throw QSError::invalid(u"%1: is not UTF-8 text"_s.arg(name));
    }
    return QSTemplate::parse(text, name);
}

const QSTemplate *find(const QList<QSTemplate> &templates, QStringView id)
{
    const auto match =
        std::ranges::find_if(templates, [id](const QSTemplate &each) { return each.id == id; });
    return match == templates.end() ? nullptr : &*match;
}

/// File names of the folder's templates, in order of their characters whatever the language is.
QStringList templateFiles(const QDir &folder)
{
    QStringList names = folder.entryList({u"*.qstemplate"_s}, QDir::Files | QDir::CaseSensitive);
    std::ranges::sort(names);
    return names;
}

QSTemplates::Catalogue missingFolder()
{
    return {{}, {u"templates folder is missing from the app"_s}};
}

QSTemplates::Catalogue loadShipped()
{
    const std::optional<QDir> resources = QSInfo::resourceFolder();
    return resources ? QSTemplates::load(QDir(resources->filePath(u"templates"_s)))
                     : missingFolder();
}

const QSTemplates::Catalogue &shipped()
{
    static const QSTemplates::Catalogue catalogue = loadShipped();
    return catalogue;
}
} // namespace

namespace QSTemplates {
Catalogue load(const QDir &folder)
{
    if (!folder.isReadable()) {
        return missingFolder();
    }
    Catalogue catalogue;
    for (const QString &name : templateFiles(folder)) {
        try {
            const QSTemplate loaded = read(folder, name);
            if (const QSTemplate *first = find(catalogue.templates, loaded.id)) {
                throw QSError::invalid(
                    u"%1: id \"%2\" belongs to %3"_s.arg(name, loaded.id, first->fileName));
            }
            catalogue.templates.append(loaded);
        } catch (const QSError &error) {
            catalogue.problems.append(error.description());
        }
    }
    return catalogue;
}

const QList<QSTemplate> &all()
{
    return shipped().templates;
}

const QStringList &loadProblems()
{
    return shipped().problems;
}

const QSTemplate *templateById(QStringView id)
{
    return find(all(), id);
}
} // namespace QSTemplates
