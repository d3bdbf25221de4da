#include "SearchView.h"

#include "AppModel.h"
#include "QSDirectory.h"
#include "VxIcon.h"
#include "VxPanel.h"
#include "VxText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr std::chrono::milliseconds untilOthers{150};

/// "Official form (Colorado)", "Vell template" or "Document".
QString describe(const QSSearchHit &hit)
{
    switch (hit.kind) {
    case QSSearchHit::Kind::template_:
        return u"Vell template"_s;
    case QSSearchHit::Kind::document:
        return u"Document"_s;
    case QSSearchHit::Kind::form:
        break;
    }
    const QSEntry *entry = QSDirectory::shared().entry(hit.ref);
    const QSJurisdiction *place = entry ? QSDirectory::shared().jurisdiction(entry->j) : nullptr;
    return place ? u"Official form (%1)"_s.arg(place->name) : u"Official form"_s;
}
} // namespace

/// One hit.
class HitRow final : public VxPanel
{
public:
    HitRow(AppModel &model, QWidget *parent)
        : VxPanel(parent),
          m_title(VxText::make({}, VxText::Role::heading, this)),
          m_kind(VxText::make({}, VxText::Role::note, this)),
          m_snippet(VxText::make({}, VxText::Role::body, this)),
          m_button(new QPushButton(u"Show"_s, this))
    {
        auto *texts = new QVBoxLayout;
        texts->addWidget(m_title);
        texts->addWidget(m_kind);
        texts->addWidget(m_snippet);
        auto *line = new QHBoxLayout;
        line->addLayout(texts, 1);
        line->addWidget(m_button, 0, Qt::AlignVCenter);
        column()->addLayout(line);
        connect(m_button, &QPushButton::clicked, this,
                [this, &model] { model.openHit(QSSearchHit(m_hit)); });
    }

    void display(const QSSearchHit &hit)
    {
        if (hit == m_hit) {
            return;
        }
        m_hit = hit;
        const QString kind = describe(hit);
        m_title->setText(hit.title);
        m_kind->setText(kind);
        m_snippet->setText(hit.snippet.simplified());
        m_button->setAccessibleName(u"%1 %2, %3"_s.arg(m_button->text(), hit.title, kind));
    }

    [[nodiscard]] QPushButton *button() const { return m_button; }

private:
    QSSearchHit m_hit;
    QLabel *m_title;
    QLabel *m_kind;
    QLabel *m_snippet;
    QPushButton *m_button;
};

SearchView::SearchView(AppModel &model, QWidget *parent)
    : QScrollArea(parent),
      m_model(model),
      m_column(new QVBoxLayout(new QWidget(this))),
      m_rows(model, m_column)
{
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(u"Search results"_s);
    QWidget *content = m_column->parentWidget();
    content->setProperty("clear", true);
    m_column->setContentsMargins({});
    m_nothing = VxText::make({}, VxText::Role::heading, content);
    m_column->addWidget(m_nothing);
    m_column->addStretch();
    setWidget(content);
    m_others.setSingleShot(true);
    m_others.setInterval(untilOthers);
    connect(&m_others, &QTimer::timeout, this, [this] { showHits(m_hits.size()); });
    connect(&m_model, &AppModel::searchChanged, this, &SearchView::showNewHits);
    connect(&m_model, &AppModel::revisionChanged, this, [this] { // all: the keyboard may be on any
        reload();
        showHits(m_hits.size());
    });
    showNewHits();
}

void SearchView::reload()
{
    if (m_model.search().trimmed().isEmpty()) {
        return;
    }
    m_hits = m_model.hits();
    m_nothing->setText(u"Nothing found for \"%1\""_s.arg(m_model.search()));
    m_nothing->setVisible(m_hits.isEmpty());
}

void SearchView::showNewHits()
{
    reload();
    const int smallestRow = fontMetrics().height() * 5;
    showHits(window()->height() / smallestRow + 1);
    verticalScrollBar()->setValue(0);
    m_others.start();
}

void SearchView::showHits(qsizetype most)
{
    widget()->setUpdatesEnabled(false);
    m_rows.show(m_hits, most);
    widget()->setUpdatesEnabled(true);
}

void SearchView::focusFirst()
{
    const HitRow *first = m_rows.first();
    if (first && first->isVisible()) {
        first->button()->setFocus(Qt::TabFocusReason);
    }
}
