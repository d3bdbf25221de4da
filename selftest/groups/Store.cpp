#include "Groups.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSInfo.h"
#include "QSTemplates.h"
#include "QSTestRun.h"
#include "Sample.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
bool finds(QSStore &store, const QString &text, QSSearchHit::Kind kind, const QString &ref)
{
    const QList<QSSearchHit> hits = store.search(text);
    return std::ranges::any_of(
        hits, [&](const QSSearchHit &hit) { return hit.kind == kind && hit.ref == ref; });
}

/// The error's sentence; null when there is none.
template <typename Action>
QString refusal(Action action)
{
    try {
        action();
    } catch (const QSError &error) {
        return error.description();
    }
    return {};
}

QSDocument titled(const QString &title, const QString &problems)
{
    QSDocument document = Sample::sale();
    document.title = title;
    document.values.insert(u"known_problems"_s, problems);
    return document;
}

void checkProfile(QSStore &store, QSTestRun &run)
{
    run.attempt(u"the profile is read as it was saved"_s, [&] {
        store.saveProfile(Sample::profile);
        return store.profile() == Sample::profile;
    });
    run.attempt(u"a new document is filled in from the profile, and nothing else in it"_s, [&] {
        const QSTemplate *form = QSTemplates::templateById(Sample::sale().templateID);
        const QSValues expected = {
            {u"seller_name"_s, u"Jordan Q. Sample"_s},
            {u"seller_address"_s, u"742 Orchard Avenue, Grand Junction, CO 81501"_s},
            {u"state"_s, u"CO"_s},
            {u"county"_s, u"Mesa"_s}};
        return form->profileValues(store.profile()) == expected;
    });
}

void checkDocuments(QSStore &store, QSTestRun &run)
{
    run.attempt(u"a saved document is read as it was typed"_s, [&] {
        const QSDocument typed = Sample::sale();
        const QSDocument saved = store.save(typed);
        const std::optional<QSDocument> found = store.document(saved.id.value());
        return found == saved && found->values == typed.values && found->state == typed.state;
    });
    run.attempt(u"saving it again changes it and adds no second one"_s, [&] {
        QSDocument edited = store.documents().value(0);
        edited.values.insert(u"buyer_name"_s, u"Leocadia Buyer"_s);
        store.save(edited);
        const QList<QSDocument> all = store.documents();
        return all.size() == 1 && all.first().values == edited.values &&
               all.first().created == edited.created;
    });
    run.attempt(u"a document without a name is not saved"_s, [&] {
        return refusal([&] { store.save(titled(u"  "_s, {})); }) ==
                   u"Give the document a name."_s &&
               store.documents().size() == 1;
    });
}

void checkSearch(QSStore &store, QSTestRun &run)
{
    run.attempt(
        u"the search finds forms, templates and documents by the beginning of a word"_s, [&] {
            const QString document = QString::number(store.documents().value(0).id.value_or(0));
            return finds(store, u"TAXPAYER ident"_s, QSSearchHit::Kind::form, u"us-w-9"_s) &&
                   finds(store, u"vehic sale odomet"_s, QSSearchHit::Kind::template_,
                         u"bill-of-sale-vehicle"_s) &&
                   finds(store, u"leocad"_s, QSSearchHit::Kind::document, document);
        });
    run.attempt(u"a word in a title counts for more than the same word inside"_s, [&] {
        store.save(titled(u"First"_s, u"The quagmobile rattles."_s));
        const QSDocument named = store.save(titled(u"Quagmobile"_s, {}));
        const QList<QSSearchHit> hits = store.search(u"quagmobile"_s);
        return hits.size() == 2 && hits.first().ref == QString::number(named.id.value());
    });
    run.attempt(u"marks and operators are no search and no error"_s, [&] {
        return store.search(u"\" * ( -"_s).isEmpty() &&
               !store.search(u"\"quagmobile\" )"_s).isEmpty();
    });
    run.attempt(u"a deleted document is gone, and its words are not found"_s, [&] {
        const QList<QSSearchHit> hits = store.search(u"quagmobile"_s);
        for (const QSSearchHit &hit : hits) {
            store.deleteDocument(hit.ref.toLongLong());
        }
        return store.documents().size() == 1 && store.search(u"quagmobile"_s).isEmpty();
    });
}

void checkForeign(const QDir &folder, QSTestRun &run)
{
    run.attempt(u"another program's database is refused and left as it was"_s, [&] {
        const QString path = folder.filePath(u"Photos.sqlite"_s);
        SQLiteDB(path).exec(u"CREATE TABLE photos (name TEXT); PRAGMA application_id = 7"_s);
        const QByteArray before = QSFile::read(path);
        const QString said = refusal([&] { QSStore{QUrl::fromLocalFile(path)}; });
        return said == u"This file is not a Vell Quillstone database."_s &&
               QSFile::read(path) == before;
    });
}
} // namespace

void Groups::store(QSTestRun &run)
{
    QSTestRun::begin(u"Profile auto-fill, saved documents and FTS5 search"_s);
    const QDir folder(QSInfo::dataFolder().filePath(u"store"_s));
    QSStore store(QUrl::fromLocalFile(folder.filePath(u"Quillstone.sqlite"_s)));
    run.check(store.hasFTS5(), u"full-text search is available"_s);
    checkProfile(store, run);
    checkDocuments(store, run);
    checkSearch(store, run);
    checkForeign(folder, run);
}
