#include "QSDirectory.h"

#include "QSError.h"
#include "QSHosts.h"
#include "QSInfo.h"

#include <QFile>
#include <QSet>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
struct Loaded
{
    QSDirectory directory;
    QString error;
};

Loaded load()
{
    const std::optional<QString> path = QSDirectory::bundledURL();
    if (!path) {
        return {{}, u"directory.json is missing from the app"_s};
    }
    const QString failed = u"directory.json could not be read: "_s;
    QFile file(*path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {{}, failed + file.errorString()};
    }
    try {
        return {QSDirectory::decode(file.readAll()), {}};
    } catch (const QSError &error) {
        return {{}, failed + error.description()};
    }
}

const Loaded &loaded()
{
    static const Loaded once = load();
    return once;
}

/// Gathers links, each URL once under its first label.
class LinkList
{
public:
    void add(const QString &label, const QString &url, bool browserOnly = false,
             bool expectPDF = false)
    {
        if (url.isEmpty() || m_seen.contains(url)) {
            return;
        }
        m_seen.insert(url);
        m_links.append({label, url, browserOnly || QSHosts::isBotProtected(url), expectPDF});
    }
    [[nodiscard]] QList<QSDirectory::Link> links() const { return m_links; }

private:
    QSet<QString> m_seen;
    QList<QSDirectory::Link> m_links;
};
} // namespace

const QSDirectory &QSDirectory::shared()
{
    return loaded().directory;
}

const QString &QSDirectory::loadError()
{
    return loaded().error;
}

std::optional<QString> QSDirectory::bundledURL()
{
    const std::optional<QDir> folder = QSInfo::resourceFolder();
    return folder ? std::optional(folder->filePath(u"data/directory.json"_s)) : std::nullopt;
}

const QSJurisdiction *QSDirectory::jurisdiction(QStringView code) const
{
    const auto match = std::ranges::find(jurisdictions, code, &QSJurisdiction::code);
    return match == jurisdictions.end() ? nullptr : &*match;
}

const QSJurisdiction *QSDirectory::federal() const
{
    return jurisdiction(u"US");
}

QList<QSJurisdiction> QSDirectory::states() const
{
    QList<QSJurisdiction> found;
    for (QStringView code : covered) {
        if (const QSJurisdiction *state = jurisdiction(code)) {
            found.append(*state);
        }
    }
    return found;
}

const QSEntry *QSDirectory::entry(QStringView id) const
{
    const auto match = std::ranges::find(entries, id, &QSEntry::id);
    return match == entries.end() ? nullptr : &*match;
}

QList<QSEntry> QSDirectory::entriesFor(QStringView state, std::optional<QSCategory> category) const
{
    QList<QSEntry> found;
    std::ranges::copy_if(entries, std::back_inserter(found), [&](const QSEntry &entry) {
        return entry.j == state && (!category || entry.cat == *category);
    });
    return found;
}

QList<QSCategory> QSDirectory::categoriesFor(QStringView state) const
{
    QList<QSCategory> found;
    for (const QSCategories::Info &info : QSCategories::all) {
        if (!entriesFor(state, info.category).isEmpty()) {
            found.append(info.category);
        }
    }
    return found;
}

QList<QSDirectory::Link> QSDirectory::allLinks() const
{
    LinkList list;
    for (const QSEntry &entry : entries) {
        const QString label = entry.j + u' ' + entry.displayTitle();
        list.add(label, entry.url, entry.browserOnly, entry.kind == QSKind::pdf);
        list.add(label + u" (info page)"_s, entry.info, entry.browserOnly);
    }
    for (const QSJurisdiction &place : jurisdictions) {
        list.add(place.name + u" self-help"_s, place.selfHelp);
        list.add(place.name + u" court forms"_s, place.courtForms);
        list.add(place.name + u" court fees"_s, place.courtFees);
        list.add(place.name + u" business filings"_s, place.business);
        list.add(place.name + u" business fees"_s, place.businessFees);
        if (place.poa) {
            list.add(place.name + u" statutory power of attorney"_s, place.poa->url);
        }
        for (const QSLegalAid &aid : place.legalAid) {
            list.add(place.name + u' ' + aid.kind + u": "_s + aid.title, aid.url);
        }
    }
    return list.links();
}
