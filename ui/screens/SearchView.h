#pragma once

#include "QSStore.h"

#include <QScrollArea>

class AppModel;
class HitRow;
class QLabel;
class QVBoxLayout;

/// What the search found, best first, each hit with what it is and the button that goes to it.
class SearchView final : public QScrollArea
{
    Q_OBJECT

public:
    explicit SearchView(AppModel &model, QWidget *parent = nullptr);

    /// Puts the keyboard on the first hit's button.
    void focusFirst();

private:
    void reload();
    [[nodiscard]] HitRow *row(int index);

    AppModel &m_model;
    QVBoxLayout *m_column;
    QLabel *m_nothing;
    QList<HitRow *> m_rows; ///< made as needed and used again for the next results
};
