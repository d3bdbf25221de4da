#include "TemplatesView.h"

#include "AppModel.h"
#include "QSDate.h"
#include "QSStates.h"
#include "QSTemplates.h"
#include "VxContextMenu.h"
#include "VxPanel.h"
#include "VxSplit.h"
#include "VxText.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int idRole = Qt::UserRole;

/// The catalogue's categories, in alphabetical order.
QStringList categories()
{
    QStringList found;
    for (const QSTemplate &each : QSTemplates::all()) {
        if (!found.contains(each.category)) {
            found.append(each.category);
        }
    }
    found.sort(Qt::CaseInsensitive);
    return found;
}

/// The note with each state's own facts ("Colorado: ...") in a paragraph of their own.
QString inParagraphs(const QString &info)
{
    static const QRegularExpression nextState = [] {
        QStringList names;
        for (const QSStates::State &state : QSStates::all) {
            names.append(state.name.toString());
        }
        return QRegularExpression(u"(?<=[.;]) (?=(%1):)"_s.arg(names.join(u'|')));
    }();
    return QString(info).replace(nextState, u"\n\n"_s);
}
} // namespace

TemplatesView::TemplatesView(AppModel &model, QWidget *parent)
    : QWidget(parent), m_model(model), m_list(new QListWidget(this))
{
    createList();
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(VxSplit::make(m_list, createDetail(), u"qs.templates.splitter"_s, this));

    connect(m_list, &QListWidget::currentItemChanged, this, [this](QListWidgetItem *item) {
        if (item) {
            m_model.selectTemplate(item->data(idRole).toString());
        }
    });
    connect(m_list, &QListWidget::itemActivated, this, &TemplatesView::start);
    VxContextMenu::attach(m_list, [this](QMenu *menu) {
        menu->addAction(m_start->text(), this, &TemplatesView::start);
    });
    connect(&m_model, &AppModel::selectionChanged, this, &TemplatesView::showSelection);
    showSelection();
}

void TemplatesView::createList()
{
    m_list->setAccessibleName(u"Templates"_s);
    m_list->ensurePolished(); // so that rows are measured with the style sheet's padding
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QFont bold = m_list->font();
    bold.setBold(true);
    for (const QString &category : categories()) {
        auto *heading = new QListWidgetItem(category, m_list);
        heading->setFlags(Qt::NoItemFlags);
        heading->setFont(bold);
        for (const QSTemplate &each : QSTemplates::all()) {
            if (each.category == category) {
                auto *item = new QListWidgetItem(each.title, m_list);
                item->setData(idRole, each.id);
                item->setToolTip(VxText::asItStands(each.summary));
            }
        }
    }
}

QWidget *TemplatesView::createDetail()
{
    auto *panel = new VxPanel(this);
    QVBoxLayout *column = panel->column();
    const auto add = [panel, column](const QString &text, VxText::Role role) {
        QLabel *label = VxText::make(text, role, panel);
        column->addWidget(label);
        return label;
    };
    m_title = add({}, VxText::Role::title);
    m_summary = add({}, VxText::Role::body);
    m_version = add({}, VxText::Role::note);
    m_start = new QPushButton(u"Start a new document"_s, panel);
    m_start->setProperty("primary", true);
    connect(m_start, &QPushButton::clicked, this, &TemplatesView::start);
    column->addWidget(m_start, 0, Qt::AlignLeft);
    add(u"Good to know"_s, VxText::Role::heading);
    m_info = add({}, VxText::Role::body);
    add(u"Fill-in fields"_s, VxText::Role::heading);
    m_fields = add({}, VxText::Role::body);
    column->addStretch();

    auto *area = new QScrollArea(this);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidget(panel);
    area->setAccessibleName(u"The selected template"_s);
    return area;
}

void TemplatesView::showSelection()
{
    const QSTemplate *chosen = QSTemplates::templateById(m_model.selectedTemplateID());
    m_start->setEnabled(chosen != nullptr);
    if (!chosen) {
        m_title->setText(u"No template is selected."_s);
        return;
    }
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->data(idRole).toString() == chosen->id) {
            const QSignalBlocker quiet(m_list);
            m_list->setCurrentRow(row);
        }
    }
    showTemplate(*chosen);
}

void TemplatesView::showTemplate(const QSTemplate &chosen)
{
    m_title->setText(chosen.title);
    m_summary->setText(chosen.summary);
    m_version->setText(u"Version %1, %2"_s.arg(chosen.version, QSDate::longText(chosen.date)));
    m_info->setText(inParagraphs(chosen.info));
    QStringList labels;
    for (const QSField &field : chosen.fields) {
        labels.append(u"\u2022 "_s + field.label + (field.required ? u" (required)"_s : QString()));
    }
    m_fields->setText(labels.join(u'\n'));
}

void TemplatesView::start()
{
    if (const QSTemplate *chosen = QSTemplates::templateById(m_model.selectedTemplateID())) {
        m_model.newDocument(*chosen);
    }
}

void TemplatesView::focusInEvent(QFocusEvent *event)
{
    m_list->setFocus(event->reason());
}
