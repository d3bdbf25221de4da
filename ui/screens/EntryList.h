#pragma once

#include <QListView>

/// A list of a FormsModel's rows: an entry's title, agency and kind, and the status of its link,
/// wrapped to the list's width; headings in bold. A status that needs attention is never cut and
/// stands out by its icon and by brighter text.
class EntryList final : public QListView
{
    Q_OBJECT

public:
    explicit EntryList(QWidget *parent = nullptr);

protected:
    /// How tall a row is depends on the width.
    void resizeEvent(QResizeEvent *event) override;
};
