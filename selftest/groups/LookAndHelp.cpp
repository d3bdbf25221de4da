#include "groups/Groups.h"

#include "QSDate.h"
#include "QSDirectory.h"
#include "QSInfo.h"
#include "QSPrefs.h"
#include "QSTestRun.h"
#include "QSThemes.h"
#include "VellAbout.h"
#include "VellHelp.h"
#include "VellTheme.h"
#include "VxZoom.h"

#include <QSettings>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString themeKey = u"vell.theme"_s;
const QString zoomKey = u"vell.zoom"_s;

constexpr std::array<QStringView, 7> themeIDs = {
    u"cobalt-gunmetal", u"candy-red-titanium",   u"rose-gold", u"lavender-pearl", u"midnight-black",
    u"brushed-gray",    u"professional-graphite"};

constexpr std::array<QStringView, 28> topicIDs = {
    u"start",           u"disclaimer",   u"finder",  u"forms",     u"opening",
    u"filling",         u"printing",     u"browser", u"templates", u"template-list",
    u"editor",          u"poa",          u"profile", u"documents", u"export",
    u"search",          u"last-checked", u"states",  u"federal",   u"fees",
    u"legal-aid",       u"backup",       u"look",    u"privacy",   u"practice",
    u"troubleshooting", u"shortcuts",    u"sources"};

void checkThemes(QSTestRun &run)
{
    const QList<VellTheme> themes = VellThemes::all();
    run.check(std::ranges::equal(themes, themeIDs, {}, &VellTheme::id),
              u"seven themes, in the menu's order"_s);
    for (const VellTheme &theme : themes) {
        const double text = VellTheme::contrast(theme.text, theme.bg);
        const double dim = VellTheme::contrast(theme.dim, theme.bg);
        run.check(text >= 7 && dim >= 4.5,
                  u"%1: contrast of text %2, of secondary text %3"_s.arg(theme.name)
                      .arg(text, 0, 'f', 1)
                      .arg(dim, 0, 'f', 1));
    }
    const double most = VellTheme::contrast(VellTheme::RGB(0x000000), VellTheme::RGB(0xFFFFFF));
    run.check(std::abs(most - 21) < 0.001, u"black on white has a contrast of 21"_s);
}

void checkDefaultTheme(QSTestRun &run)
{
    const std::unique_ptr<QSettings> settings = QSPrefs::settings();
    settings->remove(themeKey);
    run.check(VellThemes::current().name == u"Professional Graphite"_s,
              u"Professional Graphite is shown until another theme is chosen"_s);
    VellThemes::setCurrentID(u"rose-gold"_s);
    run.check(VellThemes::current().name == u"Rose Gold"_s, u"a chosen theme is shown"_s);
    VellThemes::setCurrentID(u"no-such-theme"_s);
    run.check(VellThemes::current().id == QSThemes::graphiteID &&
                  VellThemes::currentID() == u"no-such-theme"_s,
              u"a stored theme that is not there shows the default, and stays stored"_s);
    VellThemes::setCurrentID(VellThemes::defaultID()); // so that every window shows it again
    settings->remove(themeKey);
}

bool isNear(double value, double expected)
{
    return std::abs(value - expected) < 1e-9;
}

/// A way to change the zoom, and what comes of it.
struct ZoomStep
{
    QStringView name;
    double from;
    void (*take)();
    double to;
};

constexpr std::array zoomSteps = {
    ZoomStep{u"Zoom In from 100% gives 115%", 1.0, VxZoom::zoomIn, 1.15},
    ZoomStep{u"Zoom In from 115% gives 130%", 1.15, VxZoom::zoomIn, 1.3},
    ZoomStep{u"Zoom In from 190% stops at 200%", 1.9, VxZoom::zoomIn, 2.0},
    ZoomStep{u"Zoom In leaves 200% as it is", 2.0, VxZoom::zoomIn, 2.0},
    ZoomStep{u"Zoom Out from 100% gives 85%", 1.0, VxZoom::zoomOut, 0.85},
    ZoomStep{u"Zoom Out from 90% stops at 85%", 0.9, VxZoom::zoomOut, 0.85},
    ZoomStep{u"Zoom Out leaves 85% as it is", 0.85, VxZoom::zoomOut, 0.85}};

/// A number in the preferences, and the zoom that it is read as.
struct StoredZoom
{
    double stored;
    double read;
};

constexpr std::array storedZooms = {StoredZoom{5.0, 2.0}, StoredZoom{0.5, 0.85},
                                    StoredZoom{0.0, 1.0}, StoredZoom{1.149, 1.15}};

void checkZoom(QSTestRun &run)
{
    const std::unique_ptr<QSettings> settings = QSPrefs::settings();
    settings->remove(zoomKey);
    run.check(isNear(VxZoom::value(), 1), u"the zoom is 100% until another one is chosen"_s);
    for (const ZoomStep &step : zoomSteps) {
        VxZoom::setValue(step.from);
        step.take();
        run.check(isNear(VxZoom::value(), step.to), step.name.toString());
    }
    for (const StoredZoom &zoom : storedZooms) {
        settings->setValue(zoomKey, zoom.stored);
        run.check(isNear(VxZoom::value(), zoom.read),
                  u"a stored zoom of %1 reads as %2"_s.arg(zoom.stored).arg(zoom.read));
    }
    QStringList titles;
    for (int level : VxZoom::levels) {
        titles.append(VxZoom::levelTitle(level));
    }
    run.check(titles.join(u' ') == u"85% 100% 115% 130% 150% 175% 200%"_s,
              u"zoom levels: "_s + titles.join(u' '));
    VxZoom::setValue(1);
    settings->remove(zoomKey);
}

void checkTopics(QSTestRun &run)
{
    const QList<VellHelpTopic> &topics = VellHelp::topics();
    run.check(std::ranges::equal(topics, topicIDs, {}, &VellHelpTopic::id),
              u"twenty-eight help topics, in their order"_s);
    for (const VellHelpTopic &topic : topics) {
        const bool isRead = !topic.body.trimmed().isEmpty() &&
                            !topic.body.startsWith(u"This page of the help could not be read"_s);
        run.check(isRead && !topic.title.isEmpty(), u"Help: "_s + topic.title);
    }
    const QList<VellHelpTopic> all = VellHelp::allTopics();
    run.check(all.size() == topics.size() + 1 && all.last().id == u"about"_s,
              u"the maker's topic closes the help"_s);
}

bool finds(const QString &query, const QString &first)
{
    const QList<VellHelpTopic> found = VellHelp::search(query);
    return !found.isEmpty() && found.first().title == first;
}

void checkHelpSearch(QSTestRun &run)
{
    const QString fees = u"Fees and fee waivers"_s;
    run.check(VellHelp::search(u"  "_s) == VellHelp::allTopics(),
              u"an empty search of the help lists every topic"_s);
    run.check(finds(u"fee waivers"_s, fees),
              u"the topic that has the query in its title is first"_s);
    run.check(finds(u"F\u00C9E W\u00E1ivers"_s, fees),
              u"the help's search ignores case and accents"_s);
    run.check(finds(u"refer lawy"_s, u"Legal aid and lawyer referral"_s),
              u"the help is searched for parts of words, in any order"_s);
    run.check(VellHelp::search(u"fee xyzzy"_s).isEmpty(),
              u"a topic is found only if it has every word"_s);
}

void checkCredit(QSTestRun &run)
{
    const QString lines = VellAbout::extraLines().join(u'\n');
    const VellHelpTopic about = VellHelp::allTopics().last();
    run.check(QSInfo::creditLine == u"Made by Vell."_s, u"Vell credit: "_s + QSInfo::creditLine);
    run.check(QSInfo::website.scheme() == u"https"_s && !QSInfo::website.host().isEmpty(),
              u"Vell web site: "_s + QSInfo::website.toString());
    run.check(lines.contains(u"No legal advice."_s) &&
                  lines.contains(QSDate::longText(QSDirectory::shared().checked)),
              u"About says that there is no legal advice, and when the directory was checked"_s);
    run.check(VellAbout::version().startsWith(u"Version "_s + QSInfo::version()),
              u"About: "_s + VellAbout::version());
    run.check(VellAbout::copyrightLine().contains(QString::number(QDate::currentDate().year())),
              u"About: "_s + VellAbout::copyrightLine());
    run.check(about.body.contains(VellAbout::maker) &&
                  about.body.contains(QSInfo::website.toString()),
              u"the help names the maker and the web site"_s);
}
} // namespace

void Groups::lookAndHelp(QSTestRun &run)
{
    QSTestRun::begin(u"Themes, zoom, Help and Vell credit"_s);
    checkThemes(run);
    checkDefaultTheme(run);
    checkZoom(run);
    checkTopics(run);
    checkHelpSearch(run);
    checkCredit(run);
}
