#include "SettingsView.h"

#include "AppModel.h"
#include "QSInfo.h"
#include "VellTheme.h"
#include "VellThemeRoot.h"
#include "VxButton.h"
#include "VxComboBox.h"
#include "VxFlow.h"
#include "VxPanel.h"
#include "VxTallText.h"
#include "VxText.h"
#include "VxZoom.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
const QLocale american(QLocale::English, QLocale::UnitedStates);

struct Place
{
    QString name;
    QString path;
    QString folder; ///< to show
};

QList<Place> places()
{
    const QSStore *store = AppModel::store();
    const QString database = (store ? store->url() : QSInfo::databaseURL()).toLocalFile();
    const QString data = QSInfo::dataFolder().absolutePath();
    const QString filled = QSInfo::filledFolder().absolutePath();
    return {{u"Data folder"_s, data, data},
            {u"Saved documents"_s, database, QFileInfo(database).path()},
            {u"Filled PDFs"_s, filled, filled}};
}

/// The sizes to choose from, with the one that is shown.
QList<int> sizes(int shown)
{
    QList<int> all(VxZoom::levels.begin(), VxZoom::levels.end());
    if (!all.contains(shown)) {
        all.insert(std::ranges::upper_bound(all, shown), shown);
    }
    return all;
}

void addButtons(VxPanel *panel, const QList<QPushButton *> &buttons)
{
    auto *flow = new VxFlow;
    flow->setSpacing(panel->fontMetrics().height() / 2);
    panel->column()->addLayout(flow);
    for (QPushButton *button : buttons) {
        flow->addWidget(button);
    }
}
} // namespace

SettingsView::SettingsView(AppModel &model, QWidget *parent) : QScrollArea(parent), m_model(model)
{
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(u"Settings"_s);
    auto *content = new QWidget(this);
    content->setProperty("clear", true);
    m_column = new QVBoxLayout(content);
    const int gap = fontMetrics().height() / 3; // off the ring of the focus
    m_column->setContentsMargins(gap, gap, gap, gap);
    m_column->setSpacing(fontMetrics().height());
    createBackup();
    createPlaces();
    createCache();
    createLook();
    m_column->addStretch();
    setWidget(content);
    connectLook();
    connect(&m_model, &AppModel::revisionChanged, this, [this] {
        if (isVisible()) {
            showCache();
        }
    });
}

VxPanel *SettingsView::addSection(const QString &heading, const QString &text)
{
    auto *panel = new VxPanel(this);
    m_column->addWidget(panel);
    panel->column()->addWidget(VxText::make(heading, VxText::Role::heading, panel));
    if (!text.isEmpty()) {
        panel->column()->addWidget(VxText::make(text, VxText::Role::body, panel));
    }
    return panel;
}

void SettingsView::createBackup()
{
    VxPanel *panel = addSection(
        u"Backup"_s,
        u"A backup is one file with your profile, every saved document and every filled PDF."_s);
    QPushButton *back = VxButton::make(u"Back Up Now\u2026"_s, u"externaldrive.fill"_s, panel);
    QPushButton *restore =
        VxButton::make(u"Restore from Backup\u2026"_s, u"arrow.uturn.backward"_s, panel);
    addButtons(panel, {back, restore});
    connect(back, &QPushButton::clicked, &m_model, &AppModel::backupNow);
    connect(restore, &QPushButton::clicked, &m_model, &AppModel::restore);
}

void SettingsView::createPlaces()
{
    VxPanel *panel = addSection(u"Where your data is"_s);
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(fontMetrics().height());
    grid->setVerticalSpacing(fontMetrics().height() / 2);
    grid->setColumnStretch(1, 1);
    panel->column()->addLayout(grid);
    for (const Place &place : places()) {
        auto *name = new QLabel(place.name, panel);
        auto *path = new VxTallText(panel);
        path->setPlainText(place.path);
        path->setAccessibleName(place.name);
        name->setBuddy(path);
        QPushButton *show = VxButton::make(u"Show in Finder"_s, u"folder.fill"_s, panel);
        show->setAccessibleName(show->text() + u", "_s + place.name);
        connect(show, &QPushButton::clicked, &m_model,
                [this, folder = place.folder] { m_model.showFolder(folder); });
        const int row = grid->rowCount();
        grid->addWidget(name, row, 0);
        grid->addWidget(path, row, 1, Qt::AlignVCenter);
        grid->addWidget(show, row + 1, 1, Qt::AlignLeft);
    }
}

void SettingsView::createCache()
{
    VxPanel *panel = addSection(
        u"Official forms cache"_s,
        u"Emptying the cache removes only downloaded official forms; they download again when "
        "opened. Your documents and filled PDFs are not touched."_s);
    m_cache = VxText::make({}, VxText::Role::note, panel);
    panel->column()->addWidget(m_cache);
    QPushButton *empty = VxButton::make(u"Empty the forms cache"_s, u"trash.fill"_s, panel);
    addButtons(panel, {empty});
    connect(empty, &QPushButton::clicked, &m_model, &AppModel::emptyCache);
}

void SettingsView::createLook()
{
    VxPanel *panel = addSection(
        u"Look and help"_s,
        u"Themes are in the Theme menu; interface size (85%\u2013200%) is in the View menu. Help "
        "is in the Help menu."_s);
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(fontMetrics().height());
    grid->setVerticalSpacing(fontMetrics().height() / 2);
    grid->setColumnStretch(2, 1);
    panel->column()->addLayout(grid);
    const auto add = [panel, grid](const QString &name) {
        auto *label = new QLabel(name, panel);
        auto *choice = new VxComboBox(panel);
        choice->setAccessibleName(name);
        label->setBuddy(choice);
        const int row = grid->rowCount();
        grid->addWidget(label, row, 0);
        grid->addWidget(choice, row, 1);
        return choice;
    };
    m_theme = add(u"Theme"_s);
    for (const VellTheme &theme : VellThemes::all()) {
        m_theme->addItem(theme.name, theme.id);
    }
    m_size = add(u"Interface size"_s);

    QPushButton *disclaimer =
        VxButton::make(u"Show the disclaimer"_s, u"info.circle.fill"_s, panel);
    QPushButton *practice =
        VxButton::make(u"Open the practice form"_s, u"doc.richtext.fill"_s, panel);
    addButtons(panel, {disclaimer, practice});
    connect(disclaimer, &QPushButton::clicked, &m_model,
            [this] { m_model.setShowDisclaimer(true); });
    connect(practice, &QPushButton::clicked, &m_model, &AppModel::openPractice);
}

void SettingsView::connectLook()
{
    connect(m_theme, &QComboBox::activated, this,
            [this] { VellThemes::setCurrentID(m_theme->currentData().toString()); });
    connect(m_size, &QComboBox::activated, this,
            [this] { VxZoom::setValue(m_size->currentData().toInt() / 100.0); });
    if (const VellThemeRoot *look = VellThemeRoot::instance()) {
        connect(look, &VellThemeRoot::changed, this, &SettingsView::showLook);
    }
    showLook();
}

void SettingsView::showEvent(QShowEvent *event)
{
    QScrollArea::showEvent(event);
    showCache();
}

void SettingsView::showCache()
{
    const int count = QSCache::copyCount();
    const QString room =
        american.formattedDataSize(QSCache::cacheSize(), 1, QLocale::DataSizeTraditionalFormat);
    m_cache->setText(count == 0 ? u"No official form is in the cache now."_s
                     : count == 1
                         ? u"1 official form is in the cache now (%1)."_s.arg(room)
                         : u"%1 official forms are in the cache now (%2)."_s.arg(count).arg(room));
}

void SettingsView::showLook()
{
    m_theme->setCurrentIndex(m_theme->findData(VellThemes::current().id));
    const int shown = qRound(VxZoom::value() * 100);
    const QList<int> offered = sizes(shown);
    if (m_sizes != offered) {
        m_sizes = offered;
        m_size->clear();
        for (int size : offered) {
            m_size->addItem(VxZoom::levelTitle(size), size);
        }
    }
    m_size->setCurrentIndex(m_size->findData(shown));
}
