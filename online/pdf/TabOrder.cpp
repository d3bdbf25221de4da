#include "TabOrder.h"

#include <QHash>

#include <algorithm>

namespace {
/// A field's extent along the way (for rows: down the page) and across it.
struct Place
{
    int id;
    double begin;
    double end;
    double across;
};

Place placeOf(const FormField &field, bool byRows)
{
    const QRectF &rect = field.rect;
    return byRows ? Place{field.id, rect.top(), rect.bottom(), rect.left()}
                  : Place{field.id, rect.left(), rect.right(), rect.top()};
}

/// Cuts the fields into rows (or columns) and sorts each of them.
void sort(QList<Place> &places)
{
    std::ranges::stable_sort(places, {},
                             [](const Place &place) { return place.begin + place.end; });
    for (auto first = places.begin(); first != places.end();) {
        const double begin = first->begin;
        const double end = first->end;
        const auto last = std::find_if(first, places.end(), [begin, end](const Place &place) {
            const double middle = (place.begin + place.end) / 2;
            return middle < begin || middle > end;
        });
        const auto next = last == first ? first + 1 : last;
        std::stable_sort(first, next, [](const Place &one, const Place &other) {
            return one.across < other.across;
        });
        first = next;
    }
}
} // namespace

QList<int> TabOrder::of(const QList<FormField> &fields, const QList<QByteArray> &tabs,
                        const QList<int> &structure)
{
    QHash<int, qsizetype> ranks;
    for (const int id : structure) {
        if (!ranks.contains(id)) {
            ranks.insert(id, ranks.size());
        }
    }
    QList<int> order;
    for (auto field = fields.begin(); field != fields.end();) {
        const int page = field->page;
        const QByteArray tab = tabs.value(page);
        QList<Place> places;
        for (; field != fields.end() && field->page == page; ++field) {
            if (field->shown && field->isSettable()) {
                places.append(placeOf(*field, tab == "/R"));
            }
        }
        if (tab == "/R" || tab == "/C") {
            sort(places);
        } else if (tab == "/S") {
            std::ranges::stable_sort(places, {}, [&ranks](const Place &place) {
                return ranks.value(place.id, ranks.size());
            });
        }
        std::ranges::transform(places, std::back_inserter(order), &Place::id);
    }
    return order;
}
