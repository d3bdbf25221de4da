#pragma once

#include <QLayout>
#include <QLayoutItem>
#include <QList>

#include <memory>
#include <vector>

/// A row of widgets that goes on in a further row where the width does not suffice, as words do in
/// a paragraph: buttons stay readable in a narrow window and at a large interface size.
class VxFlow final : public QLayout
{
    Q_OBJECT

public:
    explicit VxFlow(QWidget *parent = nullptr);

    void addItem(QLayoutItem *item) override;
    [[nodiscard]] int count() const override;
    [[nodiscard]] QLayoutItem *itemAt(int index) const override;
    QLayoutItem *takeAt(int index) override;

    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    /// Everything in one row.
    [[nodiscard]] QSize sizeHint() const override;
    /// The largest widget alone in its row.
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect &rect) override;

private:
    enum class Pass { measure, place };

    /// Height of the rows in a rectangle of that width; sets the widgets there when it is to.
    int layOut(const QRect &rect, Pass pass) const;

    std::vector<std::unique_ptr<QLayoutItem>> m_items;
};
