#include "DisclaimerSheet.h"

#include "QSDisclaimer.h"
#include "QSInfo.h"
#include "VxPanel.h"
#include "VxText.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

DisclaimerSheet::DisclaimerSheet(QWidget *parent) : QDialog(parent)
{
    const int em = fontMetrics().height();
    const QString title = u"Please read before using"_s;
    setWindowTitle(QSInfo::appName);
    setAccessibleName(title);
    setAccessibleDescription(QSDisclaimer::full);

    auto *panel = new VxPanel(this);
    panel->column()->addWidget(VxText::make(title, VxText::Role::title, panel));
    QLabel *text = VxText::make(QSDisclaimer::full, VxText::Role::body, panel);
    text->setMinimumWidth(em * 32);
    panel->column()->addWidget(text);

    auto *understood = new QPushButton(u"I understand"_s, this);
    understood->setProperty("primary", true);
    understood->setDefault(true);
    connect(understood, &QPushButton::clicked, this, &QDialog::accept);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(em, em, em, em);
    column->setSpacing(em);
    column->addWidget(panel);
    column->addWidget(understood, 0, Qt::AlignRight);
    understood->setFocus();
}
