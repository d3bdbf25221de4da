#include "VxPanel.h"

#include <QVBoxLayout>

VxPanel::VxPanel(QWidget *parent) : QFrame(parent), m_column(new QVBoxLayout(this))
{
    const int em = fontMetrics().height();
    m_column->setContentsMargins(em, em, em, em);
    m_column->setSpacing(em / 2);
}
