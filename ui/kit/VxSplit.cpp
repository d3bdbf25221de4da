#include "VxSplit.h"

#include "VxMemory.h"

#include <QSplitter>

namespace VxSplit {
QWidget *make(QWidget *left, QWidget *right, const QString &key, QWidget *parent)
{
    auto *split = new QSplitter(Qt::Horizontal, parent);
    split->addWidget(left);
    split->addWidget(right);
    split->setChildrenCollapsible(false);
    split->setSizes({2000, 3000}); // shares of whatever room there is
    VxMemory::keepSplitter(split, key);
    return split;
}
} // namespace VxSplit
