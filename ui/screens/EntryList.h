#pragma once

#include <QListView>

/// A list of rows: a title, what it is about and the status of its link (where it has one), wrapped
/// to the list's width; headings in bold. A status that needs attention is never cut and stands out
/// by its icon and by brighter text.
class EntryList final : public QListView
{
    Q_OBJECT

public:
    /// Texts and icons besides the title (display) and the icon before it (decoration). A heading
    /// has none of them.
    enum Role {
        idRole = Qt::UserRole,
        aboutRole,
        statusRole, ///< the status's sentence
        statusIconRole,
        levelRole ///< of the status
    };

    explicit EntryList(QWidget *parent = nullptr);

protected:
    /// The first row, a heading, can't be selected: Home goes to the first that can, with the
    /// headings above it in view.
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    /// How tall a row is depends on the width. The selected one stays in view.
    void resizeEvent(QResizeEvent *event) override;
};
