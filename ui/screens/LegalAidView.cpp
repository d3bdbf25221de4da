#include "LegalAidView.h"

#include "AppModel.h"
#include "EntryLook.h"
#include "QSDirectory.h"
#include "QSFinder.h"
#include "VxButton.h"
#include "VxIconLabel.h"
#include "VxPanel.h"
#include "VxText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

/// One of those who help.
class AidRow final : public VxPanel
{
public:
    AidRow(AppModel &model, QWidget *parent)
        : VxPanel(parent),
          m_title(VxText::make({}, VxText::Role::heading, this)),
          m_about(VxText::make({}, VxText::Role::note, this)),
          m_button(VxButton::make(u"Open website"_s, u"safari.fill"_s, this))
    {
        const int em = fontMetrics().height();
        auto *texts = new QVBoxLayout;
        texts->setSpacing(em / 2);
        texts->addWidget(m_title);
        texts->addWidget(m_about);
        auto *line = new QHBoxLayout;
        line->setSpacing(em / 2);
        line->addLayout(texts, 1);
        line->addWidget(m_button, 0, Qt::AlignVCenter);
        column()->addLayout(line);
        connect(m_button, &QPushButton::clicked, this, [this, &model] { model.openLink(m_url); });
    }

    void display(const QSLegalAid &aid)
    {
        m_url = aid.url;
        m_title->setText(aid.title);
        m_about->setText(aid.kind + u" \u00B7 "_s + EntryLook::siteOf(aid.url));
        m_button->setAccessibleName(m_button->text() + u", "_s + aid.title);
        m_button->setToolTip(VxText::asItStands(aid.url));
        m_button->setVisible(!aid.url.isEmpty());
    }

    [[nodiscard]] QPushButton *button() const { return m_button; }

private:
    QString m_url;
    QLabel *m_title;
    QLabel *m_about;
    QPushButton *m_button;
};

LegalAidView::LegalAidView(AppModel &model, QWidget *parent)
    : QScrollArea(parent),
      m_model(model),
      m_introduction(VxText::make({}, VxText::Role::body, this)),
      m_column(new QVBoxLayout(new QWidget(this))),
      m_rows(model, m_column)
{
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(u"Legal aid"_s);
    QWidget *content = m_column->parentWidget();
    content->setProperty("clear", true);
    const int gap = fontMetrics().height() / 3; // off the ring of the focus
    m_column->setContentsMargins(gap, gap, gap, gap);
    m_column->setSpacing(fontMetrics().height() * 3 / 4);
    m_column->addWidget(createEmergency());
    m_column->addWidget(m_introduction);
    m_column->addStretch();
    setWidget(content);
    connect(&m_model, &AppModel::selectionChanged, this, [this] {
        if (m_shown != m_model.state()) {
            showState();
        }
    });
    showState();
}

QWidget *LegalAidView::createEmergency()
{
    auto *panel = new VxPanel(this);
    auto *row = new QHBoxLayout;
    row->setSpacing(fontMetrics().height() / 2);
    row->addWidget(new VxIconLabel(u"phone.fill"_s, panel));
    row->addWidget(VxText::make(u"In an emergency, call 911."_s, VxText::Role::heading, panel), 1);
    panel->column()->addLayout(row);
    return panel;
}

QList<QSLegalAid> LegalAidView::offers() const
{
    QList<QSLegalAid> found = QSFinder::legalAid(m_model.state());
    const QSJurisdiction *place = QSDirectory::shared().jurisdiction(m_model.state());
    if (place && !place->selfHelp.isEmpty()) {
        found.prepend({u"Official self-help center"_s, place->selfHelp, place->name});
    }
    return found;
}

void LegalAidView::showState()
{
    m_shown = m_model.state();
    const QSJurisdiction *place = QSDirectory::shared().jurisdiction(m_shown);
    m_introduction->setText(
        !QSDirectory::loadError().isEmpty()
            ? QSDirectory::loadError()
            : u"Legal aid organizations (many funded by the Legal Services Corporation, LSC), "
              "LawHelp websites and state bar lawyer referral services. Those for %1 are shown, "
              "then those for the whole country. To see another state's, choose it under \"State\" "
              "at the top. The websites open in your web browser."_s.arg(place ? place->name
                                                                               : m_shown));
    const QList<QSLegalAid> found = offers();
    m_rows.show(found, found.size());
}
