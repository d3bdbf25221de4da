#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// One page of the help. A value.
///
/// A line of the body that begins with "## " is a heading, one that begins with a bullet and a
/// blank is an item of a list, and any other is a paragraph; there is no other markup.
struct VellHelpTopic
{
    QString id; ///< stable, for links from elsewhere in the program
    QString title;
    QString body;
    QStringList keywords; ///< words to find it by that it does not use itself

    bool operator==(const VellHelpTopic &) const = default;
};

/// The program's help. The application brings its topics along, the kit adds its own. Main thread
/// only.
namespace VellHelp {
[[nodiscard]] const QList<VellHelpTopic> &topics();
/// Takes the application's topics; a help window that is open shows them when it is next shown.
void setTopics(const QList<VellHelpTopic> &topics);
/// The application's topics, the kit's on the interface's look unless there is one with that id,
/// and last the one about the maker.
[[nodiscard]] QList<VellHelpTopic> allTopics();

/// A query's words as they are looked for, without case and accents.
[[nodiscard]] QStringList words(const QString &query);
/// The topics that have every word of the query somewhere, parts of words included; those with the
/// whole query in their title come first. All topics for a query without words.
[[nodiscard]] QList<VellHelpTopic> search(const QString &query);

/// Brings the help window to the front with the topic of that id, or with the first one. A window
/// that is open already stays at what is being read when no topic is named.
void show(const QString &topic = {});
} // namespace VellHelp
