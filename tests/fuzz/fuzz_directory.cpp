#include "QSDirectory.h"
#include "QSError.h"

#include <cstdlib>

namespace {
void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

void lookUpEverything(const QSDirectory &directory)
{
    for (const QSJurisdiction &place : directory.jurisdictions) {
        const QSJurisdiction *found = directory.jurisdiction(place.code);
        require(found && found->code == place.code);
        for (const QSCategories::Info &each : QSCategories::all) {
            static_cast<void>(place.office(each.category));
            static_cast<void>(place.feePage(each.category));
            require(directory.entriesFor(place.code, each.category).size() <=
                    directory.entriesFor(place.code).size());
        }
        require(directory.categoriesFor(place.code).size() <=
                static_cast<qsizetype>(QSCategories::all.size()));
    }
    for (const QSEntry &entry : directory.entries) {
        const QSEntry *found = directory.entry(entry.id);
        require(found && found->id == entry.id);
        static_cast<void>(entry.displayTitle());
        require(!directory.entriesFor(entry.j, entry.cat).isEmpty());
    }
    static_cast<void>(directory.federal());
    static_cast<void>(directory.problems());
    static_cast<void>(directory.allLinks());
    require(directory.states().size() <= static_cast<qsizetype>(QSDirectory::covered.size()));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    try {
        lookUpEverything(QSDirectory::decode(
            QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))));
    } catch (const QSError &error) {
        require(!error.description().isEmpty());
    }
    return 0;
}
