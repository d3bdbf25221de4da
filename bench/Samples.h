#pragma once

#include "QSRendered.h"
#include "QSStore.h"
#include "QSTemplate.h"

#include <QTemporaryDir>

#include <random>

/// A user without any data, in a folder that goes away with this object: data, preferences (the
/// disclaimer accepted) and cache. Child processes are this user too. Windows are drawn offscreen
/// unless the environment names another platform. To be made before the application.
class SampleUser final
{
public:
    SampleUser();

    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

/// Documents as users fill them: real templates, every field answered. The same ones every time.
class Samples final
{
public:
    /// An answer to every field.
    [[nodiscard]] QSValues values(const QSTemplate &source);
    [[nodiscard]] QSDocument document(const QSTemplate &source);
    /// The template whose filled document has the most pages, and of those the most text.
    [[nodiscard]] const QSTemplate &longestTemplate();
    /// A document of exactly so many pages, put together from the texts of filled templates.
    [[nodiscard]] QSRendered pages(int count);

    /// What people type into the search field.
    [[nodiscard]] static const QStringList &searches();
    /// Adds that many documents to the store, of all templates in turn, and fills its index anew.
    void fill(QSStore &store, int count);

private:
    [[nodiscard]] QString value(const QSField &field);
    [[nodiscard]] QString text(const QString &key);
    [[nodiscard]] QString pick(const QStringList &choices);
    [[nodiscard]] QString name();
    [[nodiscard]] QString address();
    /// A run of words as they stand in the templates.
    [[nodiscard]] QString phrase(int fewest, int most);
    /// From 0 to below the limit.
    [[nodiscard]] int random(qsizetype limit);

    std::mt19937 m_random{20'270'301};
};
