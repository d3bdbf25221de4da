#include "Samples.h"

#include "QSInfo.h"
#include "QSPageLayout.h"
#include "QSPrefs.h"
#include "QSTemplates.h"

#include <algorithm>
#include <tuple>

using namespace Qt::Literals::StringLiterals;

namespace {
const QStringList givenNames = {u"Rosa"_s,    u"Daniel"_s, u"Mei"_s,     u"Omar"_s,   u"Harriet"_s,
                                u"Luis"_s,    u"Tanya"_s,  u"Samuel"_s,  u"Priya"_s,  u"Walter"_s,
                                u"Elena"_s,   u"Marcus"_s, u"Ingrid"_s,  u"Joseph"_s, u"Amara"_s,
                                u"Calvin"_s,  u"Noelle"_s, u"Victor"_s,  u"Sabine"_s, u"Thomas"_s,
                                u"Leticia"_s, u"Hassan"_s, u"Bridget"_s, u"Andre"_s};
const QStringList familyNames = {
    u"Delgado"_s,  u"Okafor"_s,    u"Hughes"_s,  u"Nakamura"_s, u"Petrov"_s,   u"Alvarez"_s,
    u"Sandoval"_s, u"Whitaker"_s,  u"Ramirez"_s, u"Lindgren"_s, u"Castillo"_s, u"Freeman"_s,
    u"Harper"_s,   u"Mendoza"_s,   u"Novak"_s,   u"Pacheco"_s,  u"Rutledge"_s, u"Salazar"_s,
    u"Thornton"_s, u"Underhill"_s, u"Vasquez"_s, u"Winslow"_s,  u"Yamada"_s,   u"Zamora"_s,
    u"Bennett"_s,  u"Carver"_s};
const QStringList streets = {u"Maple Street"_s,   u"Juniper Avenue"_s, u"South Pearl Street"_s,
                             u"Colfax Avenue"_s,  u"Mill Road"_s,      u"Orchard Lane"_s,
                             u"Lakeview Drive"_s, u"Second Street"_s,  u"Prairie Court"_s,
                             u"Cedar Terrace"_s};
const QStringList cities = {u"Denver"_s, u"Pueblo"_s,  u"Boulder"_s,    u"Fort Collins"_s,
                            u"Austin"_s, u"Chicago"_s, u"Sacramento"_s, u"Albany"_s,
                            u"Tampa"_s,  u"El Paso"_s, u"Peoria"_s,     u"Grand Junction"_s};
const QStringList states = {u"CO"_s, u"TX"_s, u"IL"_s, u"CA"_s, u"NY"_s, u"FL"_s};

/// All words of the templates' texts, in reading order.
const QStringList &templateWords()
{
    static const QStringList words = [] {
        QStringList all;
        for (const QSTemplate &source : QSTemplates::all()) {
            const QStringList parts = source.body.simplified().split(u' ');
            for (const QString &word : parts) {
                if (!word.contains(u'{') && !QSStore::ftsQuery(word).isEmpty()) {
                    all.append(word);
                }
            }
        }
        return all;
    }();
    return words;
}

int pageCount(const QSRendered &rendered)
{
    QSPageLayout layout;
    layout.update(rendered);
    return layout.pageCount();
}
} // namespace

SampleUser::SampleUser()
{
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        qputenv(variable, m_folder.path().toLocal8Bit());
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    qputenv("QS_DATA_DIR", path(u"data"_s).toLocal8Bit());
    QSPrefs::setDisclaimerAccepted(true);
}

int Samples::random(qsizetype limit)
{
    return static_cast<int>(m_random() % static_cast<std::mt19937::result_type>(limit));
}

QString Samples::pick(const QStringList &choices)
{
    return choices.at(random(choices.size()));
}

QString Samples::name()
{
    return pick(givenNames) + u' ' + pick(familyNames);
}

QString Samples::address()
{
    return QString::number(100 + random(9'900)) + u' ' + pick(streets) + u", "_s + pick(cities);
}

QString Samples::phrase(int fewest, int most)
{
    const QStringList &words = templateWords();
    const int count = fewest + random(most - fewest + 1);
    return words.mid(random(words.size() - count), count).join(u' ');
}

QString Samples::text(const QString &key)
{
    if (key.contains("address"_L1) || key.contains("office"_L1)) {
        return address();
    }
    if (key.contains("name"_L1)) {
        return name();
    }
    if (key.contains("phone"_L1) || key.contains("number"_L1)) {
        return u"303-555-0"_s + QString::number(100 + random(900));
    }
    if (key.contains("email"_L1)) {
        return name().replace(u' ', u'.').toLower() + u"@example.org"_s;
    }
    return phrase(2, 4);
}

QString Samples::value(const QSField &field)
{
    switch (field.kind) {
    case QSFieldKind::text:
        return text(field.key);
    case QSFieldKind::multiline:
        return phrase(8, 20);
    case QSFieldKind::date:
        return QDate(2024, 1, 1).addDays(random(1'500)).toString(Qt::ISODate);
    case QSFieldKind::money:
        return QString::number(50 + random(20'000)) + u".00"_s;
    case QSFieldKind::number:
        return QString::number(1 + random(120));
    case QSFieldKind::state:
        return pick(states);
    }
    Q_UNREACHABLE();
}

QSValues Samples::values(const QSTemplate &source)
{
    QSValues values;
    for (const QSField &field : source.fields) {
        values.insert(field.key, value(field));
    }
    return values;
}

QSDocument Samples::document(const QSTemplate &source)
{
    QSDocument document;
    document.templateID = source.id;
    document.templateVersion = source.version;
    document.values = values(source);
    document.title = source.title + u", "_s + name();
    return document;
}

const QSTemplate &Samples::longestTemplate()
{
    const auto length = [this](const QSTemplate &source) {
        const QSRendered rendered = source.render(values(source));
        return std::tuple(pageCount(rendered), rendered.plainText().size());
    };
    return *std::ranges::max_element(QSTemplates::all(), {}, length);
}

QSRendered Samples::pages(int count)
{
    QSRendered whole;
    QSPageLayout layout;
    for (qsizetype i = 0;; ++i) {
        const QSTemplate &source = QSTemplates::all().at(i % QSTemplates::all().size());
        const QSRendered rendered = source.render(values(source));
        for (const QSBlock &block : rendered.blocks) {
            whole.blocks.append(block);
            layout.update(whole);
            if (layout.pageCount() > count) {
                whole.blocks.removeLast();
                whole.title = whole.blocks.first().text();
                return whole;
            }
        }
    }
}

const QStringList &Samples::searches()
{
    static const QStringList typed = {
        u"rent receipt maple"_s,      u"security deposit"_s,       u"harper lease denver"_s,
        u"power of attorney"_s,       u"notice to vacate tampa"_s, u"promissory note interest"_s,
        u"operating agreement llc"_s, u"vehicle okafor 2027-03"_s, u"small claims"_s,
        u"witness signature austin"_s};
    return typed;
}

void Samples::fill(QSStore &store, int count)
{
    // One transaction for all of them; QSStore::save() makes one for each.
    store.db().transaction([&] {
        SQLStatement insert = store.db().prepare(
            u"INSERT INTO documents (template_id, template_version, title, values_json, state, "
            "created, modified) VALUES (?,?,?,?,?,?,?)"_s);
        const QDateTime first = QDateTime::fromSecsSinceEpoch(1'700'000'000, Qt::UTC);
        for (int i = 0; i < count; ++i) {
            const QSDocument made = document(QSTemplates::all().at(i % QSTemplates::all().size()));
            const QDateTime when = first.addSecs(i * qint64{3'600});
            insert.bind({made.templateID, made.templateVersion, made.title,
                         QSDocument::valuesToJSON(made.values), made.state, when, when});
            insert.step();
        }
    });
    store.rebuildSearchIndex();
}
