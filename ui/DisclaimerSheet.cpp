#include "DisclaimerSheet.h"

#include "QSDisclaimer.h"
#include "QSInfo.h"
#include "VxPanel.h"
#include "VxText.h"

#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
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
    panel->column()->addWidget(VxText::make(QSDisclaimer::full, VxText::Role::body, panel));

    auto *text = new QScrollArea(this);
    text->setWidget(panel);
    text->setWidgetResizable(true);
    text->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    text->setAccessibleName(title);

    auto *understood = new QPushButton(u"I understand"_s, this);
    understood->setProperty("primary", true);
    understood->setDefault(true);
    connect(understood, &QPushButton::clicked, this, &QDialog::accept);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(em, em, em, em);
    column->setSpacing(em);
    column->addWidget(text, 1);
    column->addWidget(understood, 0, Qt::AlignRight);
    const QSize all(em * 36, panel->heightForWidth(em * 32) + em * 7);
    resize(all.boundedTo(screen()->availableGeometry().size() * 9 / 10));
    understood->setFocus();
}
