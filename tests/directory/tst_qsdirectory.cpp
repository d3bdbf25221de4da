#include "QSDirectory.h"
#include "QSError.h"
#include "QSInfo.h"
#include "TestFiles.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace {
QJsonObject entry(const QString &id, const QString &state, const QString &category)
{
    return {{u"id"_s, id},
            {u"j"_s, state},
            {u"cat"_s, category},
            {u"title"_s, u"Answer"_s},
            {u"number"_s, u""_s},
            {u"agency"_s, u"Court"_s},
            {u"kind"_s, u"pdf"_s},
            {u"fillable"_s, true},
            {u"url"_s, u"https://court.example/"_s + id},
            {u"info"_s, u""_s},
            {u"rev"_s, u""_s},
            {u"note"_s, u""_s}};
}

QJsonObject jurisdiction(const QString &code, const QString &name)
{
    QJsonObject object{{u"code"_s, code}, {u"name"_s, name}};
    for (const QString &link :
         {u"selfHelp"_s, u"courtForms"_s, u"courtFees"_s, u"business"_s, u"businessFees"_s}) {
        object.insert(link, u"https://%1.example/%2"_s.arg(code.toLower(), link));
    }
    object.insert(u"offices"_s, QJsonObject{{u"evictionAnswer"_s, u"The county court."_s}});
    object.insert(u"legalAid"_s, QJsonArray{QJsonObject{{u"title"_s, u"Aid"_s},
                                                        {u"url"_s, u"https://aid.example/"_s},
                                                        {u"kind"_s, u"LSC legal aid"_s}}});
    return object;
}

/// Two states, out of their display order, and three entries.
QJsonObject smallDirectory()
{
    QJsonObject numbered = entry(u"b"_s, u"CO"_s, u"llc"_s);
    numbered.insert(u"number"_s, u"JDF 1"_s);
    numbered.insert(u"browserOnly"_s, true);
    numbered.insert(u"checked"_s, u"2026-10-01"_s);
    QJsonObject repeated = entry(u"c"_s, u"CO"_s, u"divorce"_s);
    repeated.insert(u"url"_s, u"https://court.example/a"_s);
    repeated.insert(u"info"_s, u"https://leginfo.legislature.ca.gov/law"_s);
    return {{u"format"_s, u"any"_s},
            {u"version"_s, 3},
            {u"checked"_s, u"2026-11-21"_s},
            {u"note"_s, u""_s},
            {u"jurisdictions"_s,
             QJsonArray{jurisdiction(u"IL"_s, u"Illinois"_s), jurisdiction(u"CO"_s, u"Colorado"_s),
                        jurisdiction(u"US"_s, u"United States"_s)}},
            {u"entries"_s, QJsonArray{entry(u"a"_s, u"CO"_s, u"divorce"_s), numbered, repeated}}};
}

QByteArray bytes(const QJsonObject &object)
{
    return QJsonDocument(object).toJson();
}

using Change = std::function<void(QSDirectory &)>;

/// Every state and the federal government with what each has to have, and nothing else.
QSDirectory soundDirectory()
{
    QJsonArray places;
    QJsonArray entries;
    const auto add = [&](const QString &code, const auto &categories) {
        QJsonObject place = jurisdiction(code, code);
        QJsonObject offices;
        for (QSCategory category : categories) {
            const QString id = QSCategories::info(category).id.toString();
            entries.append(entry(code + u'-' + id, code, id));
            offices.insert(id, u"The county court."_s);
        }
        place.insert(u"offices"_s, offices);
        const QString link = u"https://law.example/"_s;
        place.insert(u"poa"_s,
                     QJsonObject{{u"title"_s, u"Act"_s}, {u"url"_s, link}, {u"note"_s, u""_s}});
        QJsonArray aid = place.value(u"legalAid"_s).toArray();
        aid.append(
            QJsonObject{{u"title"_s, u"Bar"_s}, {u"url"_s, link}, {u"kind"_s, u"Bar referral"_s}});
        place.insert(u"legalAid"_s, aid);
        places.append(place);
    };
    for (QStringView code : QSDirectory::covered) {
        add(code.toString(), QSCategories::required);
    }
    add(u"US"_s, QSCategories::federal);
    QJsonObject directory = smallDirectory();
    directory.insert(u"jurisdictions"_s, places);
    directory.insert(u"entries"_s, entries);
    return QSDirectory::decode(QJsonDocument(directory).toJson());
}

/// The directory with one value of its first element of a list changed, or taken out.
QByteArray changed(const QString &list, const QString &key, const QJsonValue &value)
{
    QJsonObject directory = smallDirectory();
    if (list.isEmpty()) {
        directory.insert(key, value);
        return bytes(directory);
    }
    QJsonArray elements = directory.value(list).toArray();
    QJsonObject first = elements.first().toObject();
    first.insert(key, value);
    elements.replace(0, first);
    directory.insert(list, elements);
    return bytes(directory);
}
} // namespace

class TestQSDirectory final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // the program's directory is read once, on first use: here from a folder with a bad file
        QVERIFY(QDir(m_resources.path()).mkdir(u"data"_s));
        QFile file(m_resources.filePath(u"data/directory.json"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(changed(u"entries"_s, u"cat"_s, u"taxes"_s)) > 0);
        m_shipped = QSInfo::resourceFolder().value().filePath(u"data/directory.json"_s);
        QSInfo::setResourceFolderOverride(m_resources.path());
    }

    void aFileThatDoesNotDecodeLeavesTheProgramWithAnEmptyDirectory()
    {
        QCOMPARE(QSDirectory::shared(), QSDirectory());
        QVERIFY2(QSDirectory::loadError().startsWith(u"directory.json could not be read: "_s),
                 qPrintable(QSDirectory::loadError()));
        QVERIFY(QSDirectory::loadError().contains(u"\"taxes\""_s));
    }

    void oneBadValueRefusesTheWholeFile_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("said");
        QTest::newRow("not JSON") << QByteArray("{\"format\":") << u"at byte"_s;
        QTest::newRow("an array") << QByteArray("[]") << u"is not an object"_s;
        QTest::newRow("empty file") << QByteArray() << u"at byte"_s;
        QTest::newRow("unknown category")
            << changed(u"entries"_s, u"cat"_s, u"taxes"_s) << u"entries[0]"_s;
        QTest::newRow("unknown kind")
            << changed(u"entries"_s, u"kind"_s, u"video"_s) << u"\"video\""_s;
        QTest::newRow("missing key")
            << changed(u"entries"_s, u"agency"_s, QJsonValue::Null) << u"\"agency\""_s;
        QTest::newRow("flag as text")
            << changed(u"entries"_s, u"fillable"_s, u"yes"_s) << u"\"fillable\""_s;
        QTest::newRow("optional flag as text")
            << changed(u"entries"_s, u"browserOnly"_s, u"yes"_s) << u"\"browserOnly\""_s;
        QTest::newRow("version with a fraction")
            << changed({}, u"version"_s, 1.5) << u"\"version\""_s;
        QTest::newRow("version as text") << changed({}, u"version"_s, u"3"_s) << u"\"version\""_s;
        QTest::newRow("offices not texts")
            << changed(u"jurisdictions"_s, u"offices"_s, QJsonObject{{u"llc"_s, 1}})
            << u"jurisdictions[0].offices"_s;
        QTest::newRow("half a power of attorney")
            << changed(u"jurisdictions"_s, u"poa"_s, QJsonObject{{u"title"_s, u"Act"_s}})
            << u"\"url\""_s;
    }

    void oneBadValueRefusesTheWholeFile()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, said);
        try {
            const QSDirectory directory = QSDirectory::decode(json);
            QFAIL("It was decoded.");
        } catch (const QSError &error) {
            QVERIFY2(error.description().contains(said), error.what());
        }
    }

    void anyWholeNumberIsAVersion()
    {
        for (const qint64 version : {qint64{-1}, qint64{1} << 40, (qint64{1} << 53) + 1}) {
            QCOMPARE(QSDirectory::decode(changed({}, u"version"_s, version)).version, version);
        }
    }

    void lookupsKeepTheirOrders()
    {
        const QSDirectory directory = QSDirectory::decode(bytes(smallDirectory()));
        const QList<QSJurisdiction> states = directory.states();
        QCOMPARE(states.size(), 2);
        QCOMPARE(states.first().code, u"CO"_s);
        QCOMPARE(directory.categoriesFor(u"CO"), (QList{QSCategory::llc, QSCategory::divorce}));
        QCOMPARE(directory.entriesFor(u"CO").size(), 3);
        QCOMPARE(directory.entriesFor(u"CO", QSCategory::divorce).first().id, u"a"_s);
        QVERIFY(directory.entriesFor(u"co").isEmpty());
        QCOMPARE(directory.entry(u"b")->displayTitle(), u"JDF 1 \u2014 Answer"_s);
        QCOMPARE(directory.entry(u"a")->displayTitle(), u"Answer"_s);
        QVERIFY(directory.entry(u"b")->browserOnly && !directory.entry(u"a")->browserOnly);
        QVERIFY(!directory.entry(u"a")->checked);
        QVERIFY(!directory.entry(u"zz") && !directory.jurisdiction(u"co"));
        QCOMPARE(directory.federal()->name, u"United States"_s);
    }

    void aStateSaysWhereToFileAndWhatItCosts()
    {
        const QSDirectory directory = QSDirectory::decode(bytes(smallDirectory()));
        const QSJurisdiction *colorado = directory.jurisdiction(u"CO");
        QCOMPARE(colorado->office(QSCategory::evictionNotice), u"The county court."_s);
        QVERIFY(!colorado->office(QSCategory::divorce));
        QCOMPARE(colorado->feePage(QSCategory::dba), u"https://co.example/businessFees"_s);
        QCOMPARE(colorado->feePage(QSCategory::smallClaims), u"https://co.example/courtFees"_s);
    }

    void everyLinkIsListedOnceUnderItsFirstLabel()
    {
        const QList<QSDirectory::Link> links =
            QSDirectory::decode(bytes(smallDirectory())).allLinks();
        QStringList labels;
        QSet<QString> urls;
        for (const QSDirectory::Link &link : links) {
            labels.append(link.label);
            urls.insert(link.url);
        }
        QCOMPARE(urls.size(), links.size());
        QCOMPARE(labels.mid(0, 4),
                 (QStringList{u"CO Answer"_s, u"CO JDF 1 \u2014 Answer"_s,
                              u"CO Answer (info page)"_s, u"Illinois self-help"_s}));
        QCOMPARE(labels.at(7), u"Illinois business fees"_s);
        QCOMPARE(labels.at(8), u"Illinois LSC legal aid: Aid"_s);
        QVERIFY(!links.at(0).skip);
        QVERIFY(links.at(1).skip); // opens in the browser only
        QVERIFY(links.at(2).skip); // a host that turns programs away
        QVERIFY(links.at(0).expectPDF);
        QVERIFY(!links.at(2).expectPDF); // a PDF's info page
    }

    void onlyPlainHttpsLinksAreWellFormed_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("good");
        QTest::newRow("good") << u"https://www.court.example/a?b=1#c"_s << true;
        QTest::newRow("with a port") << u"https://court.example:8443/"_s << true;
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("a port that no site has") << u"https://court.example:99999/"_s << false;
        QTest::newRow("http") << u"http://court.example/"_s << false;
        QTest::newRow("upper-case scheme") << u"HTTPS://court.example/"_s << false;
        QTest::newRow("no dot") << u"https://localhost/"_s << false;
        QTest::newRow("dot first") << u"https://.example/"_s << false;
        QTest::newRow("dot last") << u"https://court.example./"_s << false;
        QTest::newRow("no host") << u"https:///form.pdf"_s << false;
        QTest::newRow("blank inside") << u"https://court.example/a b"_s << false;
        QTest::newRow("blank behind") << u"https://court.example/ "_s << false;
        QTest::newRow("line end behind") << u"https://court.example/\n"_s << false;
    }

    void onlyPlainHttpsLinksAreWellFormed()
    {
        QFETCH(QString, url);
        QFETCH(bool, good);
        QCOMPARE(QSDirectory::wellFormed(url), good);
    }

    void everyFaultIsALineInItsOrder_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QStringList>("lines");
        const auto row = [](const char *name, const Change &change, const QStringList &lines) {
            QTest::newRow(name) << change << lines;
        };
        row("sound", [](QSDirectory &) {}, {});
        row("a date that is none", [](QSDirectory &d) { d.checked = u"2026-02-30"_s; },
            {u"directory check date \"2026-02-30\" is not a date"_s});
        row("an entry's own faults come in order",
            [](QSDirectory &d) {
                QSEntry &entry = d.entries.last();
                entry.id = d.entries.first().id;
                entry.agency.clear();
                entry.j = u"ZZ"_s;
                entry.url = u"http://court.example/a.DOCX"_s;
                entry.info = u"court"_s;
                entry.checked = u"1/2/2026"_s;
                entry.kind = QSKind::pdf;
            },
            {u"CO-llc: duplicate id"_s, u"CO-llc: missing id, title or agency"_s,
             u"CO-llc: unknown jurisdiction ZZ"_s,
             u"CO-llc: official URL is not a well-formed https link: http://court.example/a.DOCX"_s,
             u"CO-llc: info URL is not a well-formed https link: court"_s,
             u"CO-llc: checked date \"1/2/2026\" is not a date"_s,
             u"CO-llc: marked PDF but links a Word file"_s,
             u"CO-llc: federal category in a state, or state category in federal"_s,
             u"US: no entry for USCIS fee waiver"_s});
        row("a state's links, offices and legal aid",
            [](QSDirectory &d) {
                QSJurisdiction &state = d.jurisdictions.first();
                state.business = u"x"_s;
                state.courtFees = u"y"_s;
                state.offices.remove(u"divorce"_s);
                state.poa.reset();
                state.legalAid.first().kind = u"lsc legal aid"_s;
                state.legalAid.first().url = u"z"_s;
            },
            {u"CO: business link is not well-formed: x"_s,
             u"CO: courtFees link is not well-formed: y"_s,
             u"CO: no filing office text for Divorce / dissolution"_s,
             u"CO: no power of attorney information"_s,
             u"CO: legal aid list needs LawHelp/LSC and a bar referral service"_s,
             u"CO: legal aid link not well-formed: z"_s});
        row("a state without entries of a kind",
            [](QSDirectory &d) {
                d.entries.removeIf([](const QSEntry &each) { return each.id == u"TX-dba"_s; });
                d.jurisdictions[2].poa->url = u"law"_s;
            },
            {u"TX: no entry for Business name (DBA / trade name)"_s,
             u"TX: POA link not well-formed"_s});
        row("nothing at all", [](QSDirectory &d) { d = {}; },
            {u"directory check date \"\" is not a date"_s, u"state CO is missing"_s,
             u"state CA is missing"_s, u"state TX is missing"_s, u"state FL is missing"_s,
             u"state NY is missing"_s, u"state IL is missing"_s,
             u"federal (US) section is missing"_s});
    }

    void everyFaultIsALineInItsOrder()
    {
        QFETCH(Change, change);
        QFETCH(QStringList, lines);
        QSDirectory directory = soundDirectory();
        change(directory);
        QCOMPARE(directory.problems(), lines);
    }

    void theShippedDirectoryIsSound()
    {
        const QSDirectory directory = QSDirectory::decode(contents(m_shipped));
        QCOMPARE(directory.jurisdictions.size(), 7);
        QCOMPARE(directory.states().size(), 6);
        QVERIFY(directory.federal());
        QCOMPARE(directory.problems(), QStringList());
    }

private:
    QTemporaryDir m_resources;
    QString m_shipped;
};

QTEST_GUILESS_MAIN(TestQSDirectory)
#include "tst_qsdirectory.moc"
