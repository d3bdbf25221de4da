#pragma once

#include <QLineEdit>

class AppModel;

/// The header's search field: what is typed is the model's search text at once. Escape clears it.
class SearchField final : public QLineEdit
{
    Q_OBJECT

public:
    explicit SearchField(AppModel &model, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    /// Enter or the down key: the user wants to go on in the results.
    void leaveForResults();

protected:
    void keyPressEvent(QKeyEvent *event) override;
};
