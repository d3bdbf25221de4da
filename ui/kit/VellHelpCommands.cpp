#include "VellHelpCommands.h"

#include "QSInfo.h"
#include "VellAbout.h"
#include "VellHelp.h"
#include "VxIcon.h"

#include <QApplication>
#include <QMenu>

using namespace Qt::Literals::StringLiterals;

namespace VellHelpCommands {
void fill(QMenu *menu)
{
    QAction *help = menu->addAction(VxIcon::named(u"questionmark.circle.fill"_s),
                                    QSInfo::appName + u" &Help"_s, menu, [] { VellHelp::show(); });
    help->setShortcuts({QKeySequence(u"Ctrl+?"_s), QKeySequence(u"F1"_s)});
    menu->addAction(VxIcon::named(u"safari.fill"_s), VellAbout::maker + u" &Website"_s, menu,
                    &VellAbout::openWebsite);
    menu->addAction(VxIcon::named(u"info.circle.fill"_s), u"&About "_s + QSInfo::appName, menu,
                    [] { VellAbout::show(QApplication::activeWindow()); });
}
} // namespace VellHelpCommands
