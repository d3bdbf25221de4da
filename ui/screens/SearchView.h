#pragma once

#include "QSStore.h"
#include "RowPool.h"

#include <QScrollArea>
#include <QTimer>

class AppModel;
class HitRow;
class QLabel;

/// What the search found, best first, each hit with what it is and the button that goes to it.
/// While somebody types, only as many are shown as a window has room for; the others follow after
/// the last letter.
class SearchView final : public QScrollArea
{
    Q_OBJECT

public:
    explicit SearchView(AppModel &model, QWidget *parent = nullptr);

    /// Puts the keyboard on the first hit's button.
    void focusFirst();

private:
    void reload();
    void showNewHits();
    /// Shows the first so many hits, or all that there are.
    void showHits(qsizetype most);

    AppModel &m_model;
    QVBoxLayout *m_column;
    QLabel *m_nothing;
    QList<QSSearchHit> m_hits;
    QTimer m_others; ///< until those are shown that a window has no room for
    RowPool<HitRow> m_rows;
};
