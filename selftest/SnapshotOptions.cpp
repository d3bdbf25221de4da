#include "SnapshotOptions.h"

#include "QSDirectory.h"
#include "QSError.h"
#include "VellTheme.h"
#include "VxZoom.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
QString ids(const QList<VellTheme> &themes)
{
    QStringList found;
    for (const VellTheme &theme : themes) {
        found.append(theme.id);
    }
    return found.join(u", "_s);
}

QString readTheme(const QString &id)
{
    const QList<VellTheme> themes = VellThemes::all();
    if (std::ranges::find(themes, id, &VellTheme::id) == themes.end()) {
        throw QSError::invalid(
            u"There is no theme \"%1\". The themes are %2."_s.arg(id, ids(themes)));
    }
    return id;
}

double readZoom(const QString &text)
{
    bool isNumber = false;
    const double zoom = text.toDouble(&isNumber) / 100;
    if (!isNumber || zoom < VxZoom::min || zoom > VxZoom::max) {
        throw QSError::invalid(u"The zoom is a number from 85 to 200, in per cent."_s);
    }
    return zoom;
}

QString readState(const QString &code)
{
    const auto states = QSDirectory::shared().states();
    if (std::ranges::find(states, code, &QSJurisdiction::code) == states.end()) {
        throw QSError::invalid(u"The directory has no state \"%1\"."_s.arg(code));
    }
    return code;
}
} // namespace

SnapshotOptions SnapshotOptions::parse(const QStringList &arguments)
{
    SnapshotOptions options;
    options.theme = VellThemes::defaultID();
    QStringList rest = arguments;
    const auto takeValue = [&rest](const QString &option) {
        if (rest.isEmpty() || rest.constFirst().startsWith(u"--"_s)) {
            throw QSError::invalid(u"%1 needs a value after it."_s.arg(option));
        }
        return rest.takeFirst();
    };
    while (!rest.isEmpty()) {
        const QString argument = rest.takeFirst();
        if (argument == u"--theme"_s) {
            options.theme = readTheme(takeValue(argument));
        } else if (argument == u"--zoom"_s) {
            options.zoom = readZoom(takeValue(argument));
        } else if (argument == u"--state"_s) {
            options.state = readState(takeValue(argument));
        } else if (options.folder.isEmpty() && !argument.startsWith(u"--"_s)) {
            options.folder = argument;
        } else {
            throw QSError::invalid(u"\"%1\" is not understood."_s.arg(argument));
        }
    }
    if (options.folder.isEmpty()) {
        throw QSError::invalid(u"The folder to write into is missing."_s);
    }
    return options;
}
