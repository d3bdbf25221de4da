#include "FinderPage.h"

#include "AppModel.h"
#include "EntryLook.h"
#include "QSTemplate.h"
#include "VxButton.h"
#include "VxFlow.h"
#include "VxIconLabel.h"
#include "VxPanel.h"
#include "VxText.h"

#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString otherStates =
    u"This version of the app lists statutory power of attorney links for Colorado, California, "
    "Texas, Florida, New York and Illinois. For other states, the state legislature's website "
    "publishes the state's laws."_s;

bool isAboutActing(const QString &task)
{
    return task == "poa"_L1;
}

/// A task of federal forms alone lacks nothing in a state; for acting under a power of attorney
/// the state's law stands in the place of a form.
bool lacksForm(const QSFinderResult &found)
{
    const bool federalAlone = !found.federalForms.isEmpty() &&
                              std::ranges::all_of(found.task.categories, QSCategories::isFederal);
    return found.forms.isEmpty() && !federalAlone && !isAboutActing(found.task.id);
}

QString about(const QSEntry &entry)
{
    const QString text = EntryLook::about(entry);
    return entry.opensInBrowser() ? text + u" \u00B7 opens in your browser"_s : text;
}

/// Adds a bold title with a text below it.
QVBoxLayout *addTexts(QBoxLayout *layout, const QString &title, const QString &text,
                      VxText::Role role)
{
    QWidget *panel = layout->parentWidget();
    auto *texts = new QVBoxLayout;
    layout->addLayout(texts);
    texts->setSpacing(panel->fontMetrics().height() / 8);
    QLabel *first = VxText::make(title, VxText::Role::body, panel);
    QFont bold = first->font();
    bold.setWeight(QFont::DemiBold);
    first->setFont(bold);
    texts->addWidget(first);
    texts->addWidget(VxText::make(text, role, panel));
    return texts;
}
} // namespace

FinderPage::FinderPage(AppModel &model, const QSTask &task, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_task(task.id),
      m_state(model.state()),
      m_column(new QVBoxLayout(this))
{
    setProperty("clear", true);
    const int em = fontMetrics().height();
    m_column->setContentsMargins(em / 4, 0, em / 4, em / 2);
    m_column->setSpacing(em);
    if (const auto found = QSFinder::result(task, m_state)) {
        createParts(*found);
    } else {
        addText(isAboutActing(m_task) ? otherStates : QSDirectory::loadError());
    }
    m_column->addStretch();
    refresh();
}

bool FinderPage::shows(const QSTask &task, const QString &state) const
{
    return task.id == m_task && state == m_state;
}

void FinderPage::refresh()
{
    for (const FormLine &line : m_forms) {
        const QSStatus::S status = m_model.linkStatus(line.entry);
        line.icon->setSymbol(status.symbol, EntryLook::statusColour(status.level));
        line.status->setText(status.text);
        const QVariant role = status.level == 0 ? "note"_L1 : "body"_L1;
        if (line.status->property("role") != role) {
            line.status->setProperty("role", role);
            line.status->style()->polish(line.status);
        }
    }
}

// The parts, from top to bottom

void FinderPage::createParts(const QSFinderResult &found)
{
    addText(u"Here is what the official sources provide for this. Open a form to download it from "
            "the official site; links open in your web browser."_s);
    if (lacksForm(found)) {
        addText(u"This directory has no official %1 form for this task. The Vell template below "
                "and the self-help center link are available."_s.arg(found.state.name));
    }
    createForms(found.state.name, found.forms);
    createForms(u"Federal"_s, found.federalForms);
    if (isAboutActing(m_task)) {
        createStatutoryForm(found);
    }
    createOffices(found.offices);
    createFeePages(found.feePages);
    createSelfHelp(found.state);
    createTemplates(found.templates);
    createLegalAid(found.legalAid);
}

void FinderPage::createForms(const QString &place, const QList<QSEntry> &forms)
{
    if (forms.isEmpty()) {
        return;
    }
    QVBoxLayout *section = addSection(u"Official forms: "_s + place);
    for (const QSEntry &entry : forms) {
        createForm(section, entry);
    }
}

void FinderPage::createForm(QVBoxLayout *section, const QSEntry &entry)
{
    const Row row = addRow(section, {.title = entry.displayTitle(),
                                     .about = about(entry),
                                     .action = u"Open"_s,
                                     .symbol = EntryLook::kindSymbol(entry),
                                     .browses = entry.opensInBrowser()});
    auto *line = new QHBoxLayout;
    line->setSpacing(fontMetrics().height() / 4);
    row.texts->addLayout(line);
    QWidget *panel = section->parentWidget();
    const FormLine form{entry, new VxIconLabel(panel), VxText::make({}, VxText::Role::note, panel)};
    line->addWidget(form.icon, 0, Qt::AlignTop);
    line->addWidget(form.status, 1);
    m_forms.append(form);
    connect(row.button, &QPushButton::clicked, this, [this, entry] { m_model.open(entry); });
}

void FinderPage::createStatutoryForm(const QSFinderResult &found)
{
    if (!found.poa) {
        addText(otherStates);
        return;
    }
    const QString heading = u"Statutory form for "_s + found.state.name;
    addLink(addSection(heading), found.poa->title, found.poa->note, found.poa->url);
}

void FinderPage::createOffices(const QList<QSFinderResult::Office> &offices)
{
    if (offices.isEmpty()) {
        return;
    }
    QVBoxLayout *section = addSection(u"Filed with"_s);
    for (const QSFinderResult::Office &office : offices) {
        const QString category = QSCategories::info(office.category).title.toString();
        addTexts(section, category, office.text, VxText::Role::body);
    }
}

void FinderPage::createFeePages(const QList<QSFinderResult::FeePage> &pages)
{
    if (pages.isEmpty()) {
        return;
    }
    QVBoxLayout *section = addSection(u"Fees"_s);
    section->addWidget(VxText::make(u"Fees change, so the app links to the official fee pages "
                                    "instead of listing amounts."_s,
                                    VxText::Role::body, section->parentWidget()));
    auto *flow = new VxFlow;
    flow->setSpacing(fontMetrics().height() / 2);
    section->addLayout(flow);
    for (const QSFinderResult::FeePage &page : pages) {
        QPushButton *button = VxButton::make(VxText::asCaption(page.label), u"safari.fill"_s,
                                             section->parentWidget());
        flow->addWidget(button);
        connectLink(button, page.url);
    }
}

void FinderPage::createSelfHelp(const QSJurisdiction &state)
{
    if (state.selfHelp.isEmpty()) {
        return;
    }
    addLink(addSection(u"Official self-help center"_s), u"Self-help center for "_s + state.name,
            EntryLook::siteOf(state.selfHelp), state.selfHelp);
}

void FinderPage::createTemplates(const QList<QSTemplate> &templates)
{
    if (templates.isEmpty()) {
        return;
    }
    QVBoxLayout *section = addSection(u"Vell templates"_s);
    for (const QSTemplate &each : templates) {
        const Row row = addRow(section, {.title = each.title,
                                         .about = each.summary,
                                         .action = u"Start"_s,
                                         .symbol = u"doc.text.fill"_s});
        connect(row.button, &QPushButton::clicked, this,
                [this, each] { m_model.newDocument(each); });
    }
}

void FinderPage::createLegalAid(const QList<QSLegalAid> &resources)
{
    if (resources.isEmpty()) {
        return;
    }
    QVBoxLayout *section = addSection(u"Legal aid"_s);
    for (const QSLegalAid &each : resources) {
        addLink(section, each.title, each.kind, each.url);
    }
}

// What they are made of

void FinderPage::addText(const QString &text)
{
    m_column->addWidget(VxText::make(text, VxText::Role::body, this));
}

QVBoxLayout *FinderPage::addSection(const QString &heading)
{
    const int em = fontMetrics().height();
    auto *column = new QVBoxLayout;
    column->setSpacing(em / 2);
    m_column->addLayout(column);
    column->addWidget(VxText::make(heading, VxText::Role::heading, this));
    auto *panel = new VxPanel(this);
    column->addWidget(panel);
    panel->column()->setSpacing(em);
    panel->column()->setContentsMargins(em * 3 / 4, em * 3 / 4, em * 3 / 4, em * 3 / 4);
    return panel->column();
}

FinderPage::Row FinderPage::addRow(QVBoxLayout *section, const RowText &text)
{
    QWidget *panel = section->parentWidget();
    auto *line = new QHBoxLayout;
    line->setSpacing(fontMetrics().height() / 2);
    section->addLayout(line);
    if (!text.symbol.isEmpty()) {
        line->addWidget(new VxIconLabel(text.symbol, panel), 0, Qt::AlignTop);
    }
    QVBoxLayout *texts = addTexts(line, text.title, text.about, VxText::Role::note);
    line->setStretchFactor(texts, 1);
    QPushButton *button =
        VxButton::make(text.action, text.browses ? u"safari.fill"_s : QString(), panel);
    button->setAccessibleName(text.action + u", "_s + text.title);
    button->setAccessibleDescription(text.about);
    line->addWidget(button, 0, Qt::AlignVCenter);
    return {texts, button};
}

void FinderPage::addLink(QVBoxLayout *section, const QString &title, const QString &about,
                         const QString &url)
{
    if (url.isEmpty()) {
        addTexts(section, title, about, VxText::Role::note);
        return;
    }
    const Row row = addRow(
        section,
        {.title = title, .about = about, .action = u"Open"_s, .symbol = {}, .browses = true});
    connectLink(row.button, url);
}

void FinderPage::connectLink(QPushButton *button, const QString &url)
{
    connect(button, &QPushButton::clicked, this, [this, url] { m_model.openLink(url); });
}
