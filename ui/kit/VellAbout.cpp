#include "VellAbout.h"

#include "QSClock.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "VellThemeRoot.h"
#include "VxButton.h"
#include "VxIconLabel.h"
#include "VxText.h"
#include "VxWindow.h"
#include "VxZoom.h"
#include "VxZoomHost.h"

#include <QApplication>
#include <QDate>
#include <QDesktopServices>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QSize contentSize(440, 380); ///< at 100 %
constexpr int iconLines = 4;           ///< of text, as tall as the program's icon

QStringList lines;

class AboutWindow final : public QDialog
{
public:
    AboutWindow()
    {
        setWindowTitle(u"About "_s + QSInfo::appName);
        setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                       Qt::WindowCloseButtonHint);
        setAttribute(Qt::WA_QuitOnClose, false);
        auto *column = new QVBoxLayout(this);
        column->setContentsMargins({});
        column->addWidget(new VxZoomHost(createContent(), QSize(0, 0), this));
        if (VellThemeRoot *root = VellThemeRoot::instance()) {
            connect(root, &VellThemeRoot::changed, this, &AboutWindow::fixSize);
        }
        fixSize();
        m_close->setFocus();
    }

private:
    void fixSize()
    {
        const QSize room = screen()->availableGeometry().size() * 9 / 10;
        setFixedSize((contentSize * VxZoom::value()).boundedTo(room));
    }

    QWidget *createContent()
    {
        auto *content = new QWidget(this);
        const int em = fontMetrics().height();
        auto *column = new QVBoxLayout(content);
        column->setContentsMargins(em * 2, em * 3 / 2, em * 2, em * 3 / 2);
        column->setSpacing(em / 2);
        column->addWidget(createIcon(content), 0, Qt::AlignHCenter);
        addLine(column, QSInfo::appName, VxText::Role::title);
        addLine(column, VellAbout::version(), VxText::Role::heading);
        for (const QString &line : QStringList{QSInfo::creditLine} + lines) {
            addLine(column, line, VxText::Role::body);
        }
        addLine(column, QSInfo::website.toString(), VxText::Role::note);
        addLine(column, VellAbout::copyrightLine(), VxText::Role::note);
        column->addStretch();
        column->addLayout(createButtons(content));
        return content;
    }

    static QWidget *createIcon(QWidget *content)
    {
        auto *icon = new VxIconLabel(content);
        icon->setIcon(QApplication::windowIcon(), iconLines);
        return icon;
    }

    static void addLine(QVBoxLayout *column, const QString &text, VxText::Role role)
    {
        QLabel *line = VxText::make(text, role, column->parentWidget());
        line->setAlignment(Qt::AlignHCenter);
        // to read the version out to somebody, or copy it
        line->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        column->addWidget(line);
    }

    QLayout *createButtons(QWidget *content)
    {
        auto *row = new QHBoxLayout;
        row->addStretch();
        QPushButton *site =
            VxButton::make(VellAbout::maker + u" Website"_s, u"safari.fill"_s, content);
        site->setAccessibleDescription(QSInfo::website.toString());
        m_close = new QPushButton(u"Close"_s, content);
        m_close->setDefault(true);
        row->addWidget(site);
        row->addWidget(m_close);
        row->addStretch();
        connect(site, &QPushButton::clicked, this, &VellAbout::openWebsite);
        connect(m_close, &QPushButton::clicked, this, &QDialog::close);
        return row;
    }

    QPushButton *m_close = nullptr;
};
} // namespace

namespace VellAbout {
QStringList extraLines()
{
    return lines;
}

void setExtraLines(const QStringList &extra)
{
    lines = extra;
}

QString version()
{
    const QString build = QStringLiteral(QS_BUILD);
    return u"Version "_s + QSInfo::version() + (build.isEmpty() ? build : u" (%1)"_s.arg(build));
}

QString copyrightLine()
{
    return u"\u00A9 %1 %2"_s.arg(QSClock::today().year())
        .arg(QSMutation::on(u"bare-maker") ? u"Harrowby"_s : maker);
}

void show(const QWidget *over)
{
    auto &window = VxWindow::only<AboutWindow>();
    if (!window.isVisible()) {
        VxWindow::centre(&window, window.size(), over);
    }
    VxWindow::bringForward(&window);
}

void openWebsite()
{
    if (!QDesktopServices::openUrl(QSInfo::website)) {
        QMessageBox::information(
            QApplication::activeWindow(), QSInfo::appName,
            u"The web browser could not be opened. The web site is at %1"_s.arg(
                QSInfo::website.toString()));
    }
}
} // namespace VellAbout
