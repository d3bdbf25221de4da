#include "EntryDetail.h"

#include "AppModel.h"
#include "EntryLook.h"
#include "QSDate.h"
#include "QSDirectory.h"
#include "VxButton.h"
#include "VxContextMenu.h"
#include "VxFlow.h"
#include "VxIconLabel.h"
#include "VxPanel.h"
#include "VxTallText.h"
#include "VxText.h"
#include "VxToolButton.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
const QLocale american(QLocale::English, QLocale::UnitedStates);

/// What few people ask for, a line each.
QString details(const QSEntry &entry, const std::optional<QSCacheMeta> &copy)
{
    QStringList lines;
    const auto add = [&lines](const QString &label, const QString &value) {
        if (!value.isEmpty()) {
            lines.append(label + u": "_s + value);
        }
    };
    add(u"Official link"_s, entry.url);
    add(u"Information page"_s, entry.info);
    if (copy) {
        add(u"Downloaded from"_s, copy->finalURL);
        add(u"Last checked with the site"_s, QSDate::stamp(copy->lastCheckedAt));
        add(u"Size"_s, u"%1 bytes"_s.arg(american.toString(copy->bytes)));
        add(u"Content type"_s, copy->contentType);
        add(u"SHA-256"_s, copy->sha256);
    }
    return lines.join(u'\n');
}

std::optional<QSCacheMeta> savedCopy(const QSEntry &entry)
{
    return !entry.opensInBrowser() && QSCache::hasCopy(entry) ? QSCache::meta(entry.id)
                                                              : std::nullopt;
}
} // namespace

EntryDetail::EntryDetail(AppModel &model, QWidget *parent)
    : QScrollArea(parent),
      m_model(model),
      m_hint(VxText::make(u"Choose a form on the left."_s, VxText::Role::heading, this))
{
    auto *panel = new VxPanel(this);
    m_content = createContent(panel);
    panel->column()->addWidget(m_hint);
    panel->column()->addWidget(m_content);
    panel->column()->addStretch();
    setWidget(panel);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMinimumWidth(fontMetrics().height() * 14);
    setAccessibleName(u"The selected form"_s);
    connectActions();
    display(nullptr);
}

QWidget *EntryDetail::createContent(QWidget *parent)
{
    auto *content = new QWidget(parent);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins({});
    column->setSpacing(fontMetrics().height() / 2);
    const auto add = [content, column](VxText::Role role, const QString &text = {}) {
        QLabel *label = VxText::make(text, role, content);
        column->addWidget(label);
        return label;
    };
    m_title = add(VxText::Role::title);
    m_agency = add(VxText::Role::note);
    m_kind = addLine(column);
    m_status = addLine(column);
    m_note = add(VxText::Role::body);
    createButtons(column);
    m_officeHeading = add(VxText::Role::heading, u"Filed with"_s);
    m_office = add(VxText::Role::body);
    createFacts(column);
    createMore(column);
    return content;
}

EntryDetail::Line EntryDetail::addLine(QVBoxLayout *column)
{
    auto *row = new QHBoxLayout;
    column->addLayout(row);
    const Line line{new VxIconLabel(this), VxText::make({}, VxText::Role::body, this)};
    row->addWidget(line.icon, 0, Qt::AlignTop);
    row->addWidget(line.text, 1);
    return line;
}

void EntryDetail::createButtons(QVBoxLayout *column)
{
    auto *flow = new VxFlow;
    flow->setSpacing(fontMetrics().height() / 2);
    column->addLayout(flow);
    m_main = new QPushButton(this);
    m_main->setProperty("primary", true);
    m_page = VxButton::make(u"Official page"_s, u"safari.fill"_s, this);
    m_recheck = VxButton::make(u"Check for a newer version now"_s, u"arrow.clockwise"_s, this);
    m_showCopy = VxButton::make(u"Show saved copy in Finder"_s, u"folder.fill"_s, this);
    for (QPushButton *button : {m_main, m_page, m_recheck, m_showCopy}) {
        flow->addWidget(button);
    }
}

void EntryDetail::createFacts(QVBoxLayout *column)
{
    // no QFormLayout: with rows hidden, Qt's writes past the end of its memory
    auto *facts = new QGridLayout;
    facts->setHorizontalSpacing(fontMetrics().height());
    facts->setColumnStretch(1, 1);
    column->addLayout(facts);
    const auto add = [this, facts](const QString &name) {
        const Fact fact{VxText::make(name, VxText::Role::note, this),
                        VxText::make({}, VxText::Role::body, this)};
        fact.name->setWordWrap(false);
        fact.name->setBuddy(fact.text);
        fact.text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        const int row = facts->rowCount();
        facts->addWidget(fact.name, row, 0, Qt::AlignTop);
        facts->addWidget(fact.text, row, 1);
        return fact;
    };
    m_number = add(u"Form number"_s);
    m_revision = add(u"Revision / date"_s);
    m_downloaded = add(u"Downloaded"_s);
    m_copy = add(u"Saved copy"_s);
}

void EntryDetail::createMore(QVBoxLayout *column)
{
    m_more = new VxToolButton(this);
    m_more->setText(u"More details"_s);
    m_more->setCheckable(true);
    m_more->setProperty("button", true);
    m_more->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_more->setArrowType(Qt::RightArrow);
    m_more->setFocusPolicy(Qt::StrongFocus);
    column->addWidget(m_more);

    m_details = new VxTallText(this);
    m_details->setAccessibleName(m_more->text());
    m_details->hide();
    column->addWidget(m_details);
}

void EntryDetail::connectActions()
{
    connect(m_main, &QPushButton::clicked, this, [this] { m_model.open(QSEntry(*m_entry)); });
    connect(m_page, &QPushButton::clicked, this, [this] { m_model.openOfficialPage(*m_entry); });
    connect(m_recheck, &QPushButton::clicked, this, [this] {
        if (!m_model.busy()) {
            m_model.recheck(*m_entry);
        }
    });
    connect(m_showCopy, &QPushButton::clicked, this, [this] { m_model.showSavedCopy(*m_entry); });
    connect(m_more, &QToolButton::toggled, this, [this](bool open) {
        m_more->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
        m_details->setVisible(open);
    });
}

void EntryDetail::display(const QSEntry *entry)
{
    if (!entry || !m_entry || entry->id != m_entry->id) {
        verticalScrollBar()->setValue(0);
    }
    m_entry = entry ? std::optional(*entry) : std::nullopt;
    m_hint->setVisible(!entry);
    m_content->setVisible(entry);
    if (!entry) {
        return;
    }
    const QSStatus::S status = m_model.linkStatus(*entry);
    m_title->setText(entry->displayTitle());
    m_agency->setText(entry->agency);
    m_kind.icon->setSymbol(EntryLook::kindSymbol(*entry));
    m_kind.text->setText(EntryLook::kind(*entry));
    m_status.icon->setSymbol(status.symbol, EntryLook::statusColour(status.level));
    m_status.text->setText(status.text);
    m_note->setText(entry->note);
    m_note->setVisible(!entry->note.isEmpty());
    m_main->setText(VxText::asCaption(EntryLook::mainAction(*entry)));
    const QSJurisdiction *place = QSDirectory::shared().jurisdiction(entry->j);
    const std::optional<QString> office = place ? place->office(entry->cat) : std::nullopt;
    m_office->setText(office.value_or(QString()));
    m_officeHeading->setVisible(office.has_value());
    m_office->setVisible(office.has_value());
    displayFacts(savedCopy(*entry));
}

void EntryDetail::displayFacts(const std::optional<QSCacheMeta> &copy)
{
    setFact(m_number, m_entry->number);
    setFact(m_revision, m_entry->rev);
    const bool downloads = !m_entry->opensInBrowser();
    setFact(m_downloaded, !downloads ? QString()
                          : copy     ? QSDate::stamp(copy->downloadedAt)
                                     : u"Not downloaded yet"_s);
    setFact(m_copy,
            !downloads ? QString()
            : copy ? american.formattedDataSize(copy->bytes, 1, QLocale::DataSizeTraditionalFormat)
                   : u"None"_s);
    for (QPushButton *button : {m_recheck, m_showCopy}) {
        button->setVisible(downloads);
        button->setEnabled(copy.has_value());
    }
    const QString more = details(*m_entry, copy);
    if (m_details->toPlainText() != more) { // what is selected in it stays
        m_details->setPlainText(more);
    }
}

void EntryDetail::setFact(const Fact &fact, const QString &value)
{
    fact.text->setText(value);
    fact.name->setVisible(!value.isEmpty());
    fact.text->setVisible(!value.isEmpty());
}

void EntryDetail::act()
{
    if (m_entry) {
        m_main->click();
    }
}

void EntryDetail::fillMenu(QMenu *menu) const
{
    if (m_entry) {
        VxContextMenu::addButtons(menu, {m_main, m_page, m_recheck, m_showCopy});
    }
}
