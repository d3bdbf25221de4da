#include "VellStyle.h"

#include "QSInfo.h"
#include "VellTheme.h"

#include <QApplication>
#include <QDir>
#include <QFont>
#include <QFontMetrics>
#include <QProxyStyle>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {
// Names in capitals stand for the theme's colours, sizes of text and the folder of icons. A length
// of 1em is a line of the application's font.
constexpr QStringView sheet = uR"(
QMainWindow, QDialog { background: BG; }
QToolTip { background: PANELBOTTOM; color: TEXT; border: 1px solid DIM; padding: 0.2em; }

QLabel { background: transparent; }
QLabel[role="title"] { font-size: TITLESIZE; font-weight: 600; }
QLabel[role="heading"] { font-size: HEADINGSIZE; font-weight: 600; }
QLabel[role="note"] { color: DIM; }

VxPanel, QFrame[panel="true"] {
  background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 PANELTOP, stop:1 PANELBOTTOM);
  border: 1px solid EDGE; border-radius: 0.6em; }

QPushButton, QToolButton[button="true"] {
  background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 PANELTOP, stop:1 PANELBOTTOM);
  color: TEXT; border: 1px solid LINE; margin: 1px; border-radius: 0.4em; padding: 0.4em 0.9em; }
QPushButton { qproperty-autoDefault: true; } /* pressed by Enter, too, and not only in dialogs */
QPushButton:hover, QToolButton[button="true"]:hover { border-color: TEXT; }
QPushButton:pressed, QToolButton[button="true"]:pressed { background: PANELBOTTOM; }
QPushButton:disabled, QToolButton[button="true"]:disabled { color: FAINT; border-color: EDGE; }
/* the ring of the focus takes its room from the margin, so that nothing moves */
QPushButton:focus, QToolButton[button="true"]:focus { border: 2px solid RING; margin: 0; }
QPushButton[primary="true"] { background: ACCENT; color: ONACCENT; border: 1px solid ACCENT;
  font-weight: 600; }
QPushButton[primary="true"]:hover { border-color: TEXT; }
QPushButton[primary="true"]:focus { border: 2px solid TEXT; margin: 0; }
QPushButton[primary="true"]:disabled { background: PANELBOTTOM; color: FAINT; border-color: EDGE; }
QPushButton::menu-indicator { image: url(ICONS/chevron-down-light.svg); width: 0.7em; height: 0.7em;
  subcontrol-position: right center; right: 0.6em; }
QPushButton[menu="true"] { padding-right: 2em; }
QToolButton[autoRaise="true"] { background: transparent; border: 2px solid transparent;
  border-radius: 0.4em; padding: 0.1em; }
QToolButton[autoRaise="true"]:hover { border-color: LINE; }
QToolButton[autoRaise="true"]:checked, QToolButton[autoRaise="true"]:pressed { background: SELECTED; }
QToolButton[autoRaise="true"]:focus { border-color: RING; }

QLineEdit, QPlainTextEdit, QTextEdit, QComboBox {
  background: INSET; color: TEXT; border: 1px solid LINE; margin: 1px; border-radius: 0.4em;
  padding: 0.35em;
  selection-background-color: ACCENT; selection-color: ONACCENT; }
QLineEdit:focus, QPlainTextEdit:focus, QTextEdit:focus, QComboBox:focus {
  border: 2px solid RING; margin: 0; }
QComboBox::drop-down { border: none; width: 1.6em; }
QComboBox::down-arrow { image: url(ICONS/chevron-down-light.svg); width: 0.7em; height: 0.7em; }
QComboBox QAbstractItemView { background: PANELBOTTOM; color: TEXT; border: 1px solid LINE;
  selection-background-color: ACCENT; selection-color: ONACCENT; }

QListView, QTableView { background: INSET; color: TEXT; border: 1px solid EDGE;
  border-radius: 0.6em; outline: none; }
QListView:focus, QTableView:focus { border: 2px solid RING; }
QListView::item { padding: 0.45em 0.6em; border: none; }
QListView::item:hover { background: EDGE; }
QListView::item:selected, QTableView::item:selected { background: ACCENT; color: ONACCENT; }
QListView::item:disabled { color: DIM; }
QTableView { gridline-color: transparent; alternate-background-color: STRIPE; }
QTableView::item { padding: 0.3em 0.6em; border: none; }
QHeaderView { background: transparent; }
QHeaderView::section { background: transparent; color: DIM; border: none;
  border-bottom: 1px solid LINE; padding: 0.4em 0.6em; font-weight: 600; }

QListView#screens { background: transparent; border: none; border-radius: 0; }
QListView#screens:focus { border: none; }
QListView#screens::item { border: 2px solid transparent; border-left: 0.3em solid transparent;
  border-radius: 0.5em; padding: 0.5em; }
QListView#screens::item:selected { background: SELECTED; color: TEXT;
  border-left: 0.3em solid ACCENT; }
QListView#screens::item:selected:focus { border: 2px solid RING; border-left: 0.3em solid RING; }
QFrame#rail { background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 PANELTOP,
  stop:1 PANELBOTTOM); border: none; border-right: 1px solid EDGE; }
QFrame#footer { background: PANELBOTTOM; border: none; border-top: 1px solid EDGE; }
QFrame#message { background: PANELBOTTOM; border: 1px solid ACCENT; border-radius: 0.5em; }

QScrollArea { background: transparent; border: 2px solid transparent; border-radius: 0.6em; }
QScrollArea:focus { border-color: RING; }
QScrollArea#host { border: none; }
QScrollArea > QWidget > QWidget[clear="true"] { background: transparent; }
QScrollBar:vertical { background: transparent; width: 0.9em; margin: 0; }
QScrollBar:horizontal { background: transparent; height: 0.9em; margin: 0; }
QScrollBar::handle { background: LINE; border-radius: 0.3em; margin: 0.15em; }
QScrollBar::handle:vertical { min-height: 2em; }
QScrollBar::handle:horizontal { min-width: 2em; }
QScrollBar::handle:hover { background: DIM; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }

QSplitter::handle:horizontal { width: 0.9em;
  background: qlineargradient(x1:0, y1:0, x2:1, y2:0, stop:0 rgba(0,0,0,0), stop:0.39 rgba(0,0,0,0),
  stop:0.4 EDGE, stop:0.6 EDGE, stop:0.61 rgba(0,0,0,0), stop:1 rgba(0,0,0,0)); }
QProgressBar { background: INSET; border: 1px solid LINE; border-radius: 0.3em; max-height: 0.5em; }
QProgressBar::chunk { background: ACCENT; border-radius: 0.3em; }

QMenuBar { background: BG; color: TEXT; }
QMenuBar::item { padding: 0.3em 0.7em; background: transparent; }
QMenuBar::item:selected { background: SELECTED; }
QMenu { background: PANELBOTTOM; color: TEXT; border: 1px solid LINE; padding: 0.3em; }
QMenu::item { padding: 0.35em 1.6em; border-radius: 0.3em; }
QMenu::item:selected { background: ACCENT; color: ONACCENT; }
QMenu::item:disabled { color: FAINT; }
QMenu::indicator { width: 0.9em; height: 0.9em; left: 0.4em; }
QMenu::indicator:checked { image: url(ICONS/check-lg-light.svg); }
QMenu::separator { height: 1px; background: LINE; margin: 0.3em 0.6em; }

QCalendarWidget QWidget { background: PANELBOTTOM; color: TEXT; alternate-background-color: PANELTOP; }
QCalendarWidget QTableView::item { padding: 0; }
QCalendarWidget QAbstractItemView { selection-background-color: ACCENT;
  selection-color: ONACCENT; border-radius: 0; }
)";

/// Fusion, whose icons and marks are a line of the application's font tall instead of so many
/// pixels.
class LineHighStyle final : public QProxyStyle
{
public:
    LineHighStyle() : QProxyStyle(u"Fusion"_s) {}

    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption *option,
                                  const QWidget *widget) const override
    {
        switch (metric) {
        case PM_SmallIconSize:
        case PM_ButtonIconSize:
        case PM_LineEditIconSize:
        case PM_ToolBarIconSize:
        case PM_IndicatorWidth:
        case PM_IndicatorHeight:
        case PM_ExclusiveIndicatorWidth:
        case PM_ExclusiveIndicatorHeight:
            return QFontMetrics(QApplication::font()).height();
        case PM_MessageBoxIconSize:
            return 2 * QFontMetrics(QApplication::font()).height();
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }
};

using RGB = VellTheme::RGB;

constexpr double bodyContrast = 7.1; // a little more than is asked for: colours are rounded
constexpr double secondaryContrast = 4.6;
constexpr double lineContrast = 3.1; ///< of what is no text

/// A colour of the way from one to another.
RGB between(RGB from, RGB to, double share)
{
    const auto mix = [share](double a, double b) { return a + (b - a) * share; };
    RGB mixed;
    mixed.r = mix(from.r, to.r);
    mixed.g = mix(from.g, to.g);
    mixed.b = mix(from.b, to.b);
    return mixed;
}

/// How far to go from one colour to another, at most that far, for a colour that fits; 0 where
/// none does.
template <typename Fits>
double farthest(RGB from, RGB to, double most, Fits fits)
{
    constexpr double step = 0.01;
    double share = most;
    while (share > 0 && !fits(between(from, to, share))) {
        share -= step;
    }
    return qMax(share, 0.0);
}

/// Where a panel's gradient begins: at the theme's own colour, or as near to it as texts stay
/// readable.
RGB raised(const VellTheme &theme)
{
    const auto carriesText = [&theme](RGB colour) {
        return VellTheme::contrast(theme.text, colour) >= bodyContrast &&
               VellTheme::contrast(theme.dim, colour) >= secondaryContrast;
    };
    return between(theme.panelBottom, theme.panelTop,
                   farthest(theme.panelBottom, theme.panelTop, 1, carriesText));
}

/// What lies over the panel under the chosen screen's name.
QColor selected(const VellTheme &theme)
{
    constexpr double strongest = 0.28;
    return theme.accent.color(
        farthest(raised(theme), theme.accent, strongest, [&theme](RGB colour) {
            return VellTheme::contrast(theme.text, colour) >= bodyContrast;
        }));
}

/// The focus ring: the accent, or paler so that it is seen on panels and on the window.
RGB ring(const VellTheme &theme)
{
    const RGB panel = raised(theme);
    const auto isSeen = [&theme, panel](RGB colour) {
        return VellTheme::contrast(colour, panel) >= lineContrast &&
               VellTheme::contrast(colour, theme.bg) >= lineContrast;
    };
    return between(theme.text, theme.accent, farthest(theme.text, theme.accent, 1, isSeen));
}

QString css(const QColor &colour)
{
    return u"rgba(%1,%2,%3,%4)"_s.arg(colour.red())
        .arg(colour.green())
        .arg(colour.blue())
        .arg(colour.alpha());
}
} // namespace

namespace VellStyle {
QPalette palette(const VellTheme &theme)
{
    const QColor text = theme.text.color();
    const QColor onAccent = theme.readableOn(theme.accent).color();
    const QColor faint = between(theme.bg, theme.dim, 0.6).color();
    const QColor panelTop = raised(theme).color();
    QPalette palette(text, panelTop, panelTop.lighter(), theme.bg.color(),
                     theme.panelBottom.color(), text, text, theme.panelBottom.color(),
                     theme.bg.color());
    palette.setColor(QPalette::Highlight, theme.accent.color());
    palette.setColor(QPalette::HighlightedText, onAccent);
    palette.setColor(QPalette::Link, ring(theme).color());
    palette.setColor(QPalette::PlaceholderText, between(theme.bg, theme.dim, 0.85).color());
    palette.setColor(QPalette::ToolTipBase, theme.panelBottom.color());
    palette.setColor(QPalette::ToolTipText, text);
    for (QPalette::ColorRole role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText}) {
        palette.setColor(QPalette::Disabled, role, faint);
    }
    return palette;
}

QString styleSheet(const VellTheme &theme, const QFont &font)
{
    const std::pair<QStringView, QColor> colours[] = {
        {u"ONACCENT", theme.readableOn(theme.accent).color()},
        {u"ACCENT", theme.accent.color()},
        {u"RING", ring(theme).color()},
        {u"PANELTOP", raised(theme).color()},
        {u"PANELBOTTOM", theme.panelBottom.color()},
        {u"SELECTED", selected(theme)},
        {u"STRIPE", theme.text.color(0.035)},
        {u"INSET", QColor(0, 0, 0, 71)},
        {u"FAINT", between(theme.bg, theme.dim, 0.6).color()},
        {u"LINE", theme.dim.color(0.45)},
        {u"EDGE", theme.dim.color(0.18)},
        {u"TEXT", theme.text.color()},
        {u"DIM", theme.dim.color()},
        {u"BG", theme.bg.color()},
    };
    QString text = sheet.toString();
    for (const auto &[name, colour] : colours) {
        text.replace(name.toString(), css(colour));
    }
    const auto points = [&font](double factor) {
        return u"%1pt"_s.arg(font.pointSizeF() * factor);
    };
    const std::optional<QDir> resources = QSInfo::resourceFolder();
    text.replace(u"ICONS"_s, resources ? resources->filePath(u"icons"_s) : QString());
    text.replace(u"TITLESIZE"_s, points(1.6));
    text.replace(u"HEADINGSIZE"_s, points(1.15));
    return text;
}

void apply(QApplication &application, const VellTheme &theme)
{
    if (application.styleSheet().isEmpty()) { // for good: the application takes it
        QApplication::setStyle(std::make_unique<LineHighStyle>().release());
    }
    QApplication::setPalette(palette(theme));
    application.setStyleSheet(styleSheet(theme, QApplication::font()));
}
} // namespace VellStyle
