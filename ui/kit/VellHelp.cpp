#include "VellHelp.h"

#include "QSInfo.h"
#include "QSMutation.h"
#include "VellAbout.h"
#include "VellHelpWindow.h"
#include "VxFolded.h"
#include "VxWindow.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
QList<VellHelpTopic> applicationTopics;

VellHelpTopic look()
{
    return {u"look"_s,
            u"Themes and interface zoom"_s,
            u"The colours and the size of everything in the windows can be changed. Both are "
            "remembered, and both take effect at once in every open window.\n"
            "\n"
            "## Colours\n"
            "Choose a theme in the Theme menu.\n"
            "\n"
            "## Size\n"
            "\u2022 Ctrl and + makes everything larger.\n"
            "\u2022 Ctrl and - makes everything smaller.\n"
            "\u2022 Ctrl and 0 goes back to the normal size."_s,
            {u"color"_s, u"colour"_s, u"dark"_s, u"bigger"_s, u"larger"_s, u"letters"_s,
             u"eyesight"_s}};
}

VellHelpTopic about()
{
    return {u"about"_s,
            u"About "_s + VellAbout::maker,
            u"%1 is made by %2.\n"
            "\n"
            "Updates and support are found on the web site: %3"_s.arg(
                QSInfo::appName, VellAbout::maker, QSInfo::website.toString()),
            {u"version"_s, u"update"_s, u"support"_s, u"contact"_s, u"website"_s}};
}

QString searchText(const VellHelpTopic &topic)
{
    return VxFolded(topic.title + u'\n' + topic.body + u'\n' + topic.keywords.join(u' ')).text();
}
} // namespace

namespace VellHelp {
const QList<VellHelpTopic> &topics()
{
    return applicationTopics;
}

void setTopics(const QList<VellHelpTopic> &topics)
{
    applicationTopics = topics;
}

QList<VellHelpTopic> allTopics()
{
    QList<VellHelpTopic> all = applicationTopics;
    const VellHelpTopic generic = look();
    if (std::ranges::find(all, generic.id, &VellHelpTopic::id) == all.end()) {
        all.append(generic);
    }
    all.append(about());
    return all;
}

QStringList words(const QString &query)
{
    QStringList found;
    for (const QString &word : query.simplified().split(u' ')) {
        found.append(VxFolded(word).text());
    }
    found.removeAll(QString()); // also what consisted of accents alone
    return found;
}

QList<VellHelpTopic> search(const QString &query)
{
    const QStringList wanted = words(query);
    QList<VellHelpTopic> found = allTopics();
    found.removeIf([&wanted](const VellHelpTopic &topic) {
        const QString text = searchText(topic);
        const auto has = [&text](const QString &word) { return text.contains(word); };
        return QSMutation::on(u"help-any-word") ? std::ranges::none_of(wanted, has)
                                                : !std::ranges::all_of(wanted, has);
    });
    // the blanks of somebody still typing belong to no title
    const QString whole = VxFolded(query.simplified()).text();
    std::stable_partition(found.begin(), found.end(), [&whole](const VellHelpTopic &topic) {
        return VxFolded(topic.title).text().contains(whole);
    });
    return found;
}

void show(const QString &topic)
{
    VxWindow::only<VellHelpWindow>().showTopic(topic);
}
} // namespace VellHelp
