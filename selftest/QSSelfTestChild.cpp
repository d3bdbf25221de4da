#include "QSError.h"
#include "QSFile.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "QSSelfTest.h"
#include "QSStore.h"
#include "Sample.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace {
enum Status { done = 0, notOpened = 3, notWritten = 4 };

/// The path behind a flag; absent without either.
std::optional<QString> pathBehind(const QString &flag, const QStringList &arguments)
{
    const qsizetype at = arguments.indexOf(flag);
    return at >= 0 && at + 1 < arguments.size() ? std::optional(arguments.at(at + 1))
                                                : std::nullopt;
}

void print(const QString &line)
{
    std::printf("%s\n", qUtf8Printable(line));
}

int write(QSStore &store)
{
    try {
        Sample::save(store);
        print(u"DIGEST|"_s + Sample::digest(store));
        return done;
    } catch (const QSError &error) {
        print(u"ERROR|"_s + error.description());
        return notWritten;
    }
}

int read(QSStore &store)
{
    print(u"DOCS|%1|PDFS|%2|NAME|%3"_s.arg(store.documents().size())
              .arg(store.filledPDFs().size())
              .arg(store.profile().value(u"fullName"_s)));
    print(u"DIGEST|"_s + Sample::digest(store));
    return done;
}

/// Makes the folder and marks it, so that a later child knows it again. Throws for a folder that
/// was there without the mark: what is in it is somebody's.
void claim(const QDir &folder)
{
    const QString mark = folder.filePath(u".quillstone-selftest"_s);
    if (QFileInfo::exists(mark)) {
        return;
    }
    QDir().mkpath(QFileInfo(folder.path()).path());
    if (::mkdir(QFile::encodeName(folder.path()).constData(), S_IRWXU) != 0) {
        throw errno == EEXIST
            ? QSError::invalid(u"The folder %1 is not the self-test's."_s.arg(folder.path()))
            : QSError::io(u"The folder %1 could not be made: %2"_s.arg(folder.path(),
                                                                       qt_error_string(errno)));
    }
    QSFile::write(mark, {});
}

int onStore(const QString &path, int (*work)(QSStore &))
{
    const QFileInfo file(path);
    // The folder that a link leads to, for that is where the database would be changed.
    const QString folder = file.exists() ? file.canonicalPath() : file.absolutePath();
    try {
        claim(folder);
        QSMutation::arm();
        QSInfo::setDataFolderOverride(folder);
        QSStore store(QUrl::fromLocalFile(file.absoluteFilePath()), QSStore::Indexing::later);
        return work(store);
    } catch (const QSError &error) {
        std::fprintf(stderr, "The database %s can't be used: %s\n", qUtf8Printable(path),
                     error.what());
        return notOpened;
    }
}
} // namespace

namespace QSSelfTest {
bool isChild(const QStringList &arguments)
{
    return pathBehind(writeFlag, arguments) || pathBehind(readFlag, arguments);
}

std::optional<int> handleChild(const QStringList &arguments)
{
    if (const std::optional<QString> path = pathBehind(writeFlag, arguments)) {
        return onStore(*path, write);
    }
    if (const std::optional<QString> path = pathBehind(readFlag, arguments)) {
        return onStore(*path, read);
    }
    return std::nullopt;
}
} // namespace QSSelfTest
